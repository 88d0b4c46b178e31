#include "tests/reference_host/ssp/ModelFileTest.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "tests/reference_host/ssp/ZipBytes.hpp"

namespace reference_host {

namespace {

/// The text of the host error in which the work must end.
std::string refusal(const std::function<void()>& work)
{
    try {
        work();
    } catch (const zmsvException& error) {
        return error.what();
    }
    ADD_FAILURE() << "expected a host error";
    return {};
}

// ---- what comes back --------------------------------------------------------------------------------

TEST_F(ModelFileTest, DiagramComesBack)
{
    EditHistory& history = m_model->history();
    Block& works = history.addBlock(m_model->root(), u"Wärk <&\"> 𠮷", BlockKind::System);
    Block& inner = history.addBlock(works, u"Inner", BlockKind::Component);
    history.addOutput(inner, u"out\nput", 1);
    history.moveBlock(m_lamp, works);
    history.reorderOutputs(m_gain, {2, 1});
    history.setParameter(inner, u"Gain", u"1.5");
    Chart& chart = inner.addChart(u"Mode");
    chart.addData(u"minutes", chart.addState(u"Day", chart.addState(u"Automatic")));
    const std::string before = describeModel(*m_model);
    EXPECT_EQ(describeModel(*saveAndOpen()), before);
}

TEST_F(ModelFileTest, NumbersOfDeletedBlocksAreNotGivenAgain)
{
    m_model->history().deleteBlock(m_gain);
    const std::uint32_t last = m_model->lastNumber();
    const auto model = saveAndOpen();
    EXPECT_EQ(model->add(model->root(), u"New", BlockKind::Component).number(), last + 1);
}

TEST_F(ModelFileTest, PortNumbersFollowTheirNamesInAChangedDescription)
{
    saveModel(*m_model, m_file);
    OpenModels::close(u"plant");
    const Archive saved(bytesOf(m_file));
    std::string changed = saved.read("SystemStructure.ssd");
    const std::size_t first = changed.find("\"y1\"");
    const std::size_t second = changed.find("\"y2\"");
    ASSERT_LT(first, second);
    changed.replace(first, 4, "\"y2\"").replace(second, 4, "\"y1\"");
    const auto model =
        openModel(write("changed.ssp", Archive::pack(&saved, {{"SystemStructure.ssd", changed}})));
    EXPECT_EQ(model->findByPath(u"Gain")->ports(PortKind::Output)[0].name, u"y1");
}

TEST_F(ModelFileTest, SignalsAndClientsComeBack)
{
    addSignal(m_gain, 2, "signal");
    addClient(&m_gauge, "client", "signal");
    setObservers();
    const auto model = saveAndOpen();
    const OwnedValue observers = model->observers();
    const OwnedValue signals = property(observers, "Signals");
    const OwnedValue clients = property(observers, "Clients");
    EXPECT_EQ(read(element(signals, 1), "UUID"), "\"signal\"");
    EXPECT_EQ(read(element(signals, 1), "BlockPath_"), "\"plant/Gain\"");
    EXPECT_EQ(read(element(clients, 1), "SignalUUID_"), "\"signal\"");
    EXPECT_EQ(firstText(element(clients, 1), "ModelPath_"), "plant/Panel/Gauge");
    EXPECT_TRUE(
        isOfClass(property(element(clients, 1), "SignalInfo").get(), "Zelmar.HMI.SignalSpecification"));
}

TEST_F(ModelFileTest, PersistenceIsKeptToTheLetter)
{
    addSignal(m_gain, 1, "a");
    addSignal(m_gain, 2, "b");
    setObservers();
    saveModel(*m_model, m_file);
    const std::string first = bytesOf(m_file);
    OpenModels::close(u"plant");
    saveModel(*openModel(m_file), m_file);
    EXPECT_EQ(bytesOf(m_file), first);
}

TEST_F(ModelFileTest, ModelWithoutObserversKeepsNone)
{
    saveModel(*m_model, m_file);
    const Archive saved(bytesOf(m_file));
    EXPECT_TRUE(saved.has(toolDataEntry));
    EXPECT_FALSE(saved.has(signalsEntry));
    EXPECT_FALSE(saved.has(clientsEntry));
    OpenModels::close(u"plant");
    EXPECT_EQ(openModel(m_file)->observers(), nullptr);
}

TEST_F(ModelFileTest, ObserversThatAreGoneGoFromTheFile)
{
    addSignal(m_gain, 1, "a");
    setObservers();
    const auto model = saveAndOpen();
    model->setObservers(nullptr);
    saveModel(*model, m_file);
    EXPECT_FALSE(Archive(bytesOf(m_file)).has(signalsEntry));
}

TEST_F(ModelFileTest, OneCollectionComesBackAlone)
{
    m_clients = makeEmptyValue();
    addSignal(m_gain, 1, "a");
    setObservers();
    const auto model = saveAndOpen();
    EXPECT_TRUE(isEmpty(property(model->observers(), "Clients").get()));
    EXPECT_EQ(read(property(model->observers(), "Signals"), "Count").back(), '1');
}

TEST_F(ModelFileTest, EverythingThatCameWithTheArchiveStays)
{
    OpenModels::close(u"plant");
    const std::string text = description("<!-- mine -->\n");
    const std::string binary("\0\xff\x01 PK", 6);
    const auto file = pack({{"resources/", ""},
                            {"resources/block.fmu", binary},
                            {"SystemStructure.ssd", text},
                            {"Variant.ssd", "as it may be"},
                            {"extra/org.example.other/a.txt", "a"},
                            {"extra/com.zelmar.hmi/later.json", "{}"}});
    const auto model = openModel(file);
    saveModel(*model, m_file);
    const Archive saved(bytesOf(m_file));
    EXPECT_EQ(saved.names(),
              (std::vector<std::string>{"resources/", "resources/block.fmu", "Variant.ssd",
                                        "extra/org.example.other/a.txt", "extra/com.zelmar.hmi/later.json",
                                        "SystemStructure.ssd", toolDataEntry}));
    EXPECT_EQ(saved.read("resources/block.fmu"), binary);
    EXPECT_EQ(saved.read("SystemStructure.ssd"), text);
    EXPECT_EQ(saved.read("Variant.ssd"), "as it may be");
}

TEST_F(ModelFileTest, ModelIsSavedAgainWhenItsFileIsGone)
{
    const auto model = saveAndOpen();
    std::filesystem::remove(m_file);
    saveModel(*model, m_folder / "other.SSP");
    OpenModels::close(u"plant");
    EXPECT_EQ(describeModel(*openModel(m_folder / "other.SSP")), describeModel(*m_model));
}

TEST_F(ModelFileTest, ArchiveIsKnownByItsBeginningToo)
{
    saveModel(*m_model, m_file);
    OpenModels::close(u"plant");
    const auto renamed = m_folder / "plant.zip";
    std::filesystem::rename(m_file, renamed);
    EXPECT_EQ(describeModel(*openModel(renamed)), describeModel(*m_model));
}

// ---- what has no place ------------------------------------------------------------------------------

TEST_F(ModelFileTest, WhatTheDescriptionNoLongerHasIsAWarning)
{
    saveModel(*m_model, m_file);
    OpenModels::close(u"plant");
    const Archive saved(bytesOf(m_file));
    const std::string changed = description(
        "<ssd:Elements><ssd:Component name='Gain' source=''><ssd:Connectors>"
        "<ssd:Connector name='y3' kind='output'/><ssd:Connector name='y2' kind='output'/>"
        "</ssd:Connectors></ssd:Component><ssd:Component name='New' source=''/></ssd:Elements>");
    const auto model =
        openModel(write("changed.ssp", Archive::pack(&saved, {{"SystemStructure.ssd", changed}})));
    std::vector<std::string> warnings;
    for (const Warning& warning : Warnings::take()) {
        EXPECT_EQ(warning.id.key(), "LeftOver");
        warnings.push_back(warning.text.substr(warning.text.find(".json: ") + 7));
    }
    EXPECT_EQ(warnings,
              (std::vector<std::string>{"\"plant/Panel\" is no longer there.",
                                        "output port \"y1\" of \"plant/Gain\" is no longer there."}));
    EXPECT_EQ(model->findByPath(u"Gain")->number(), m_gain.number());
    EXPECT_EQ(model->findByPath(u"Gain")->ports(PortKind::Output)[1].name, u"y2");
    EXPECT_EQ(model->findByPath(u"New")->number(), m_model->lastNumber() + 1);
}

TEST_F(ModelFileTest, PortsKeepTheirNumbersBesideOnesThatAreCalledOtherwise)
{
    m_model->history().addOutput(m_gain, u"y3", 3);
    saveModel(*m_model, m_file);
    OpenModels::close(u"plant");
    const Archive saved(bytesOf(m_file));
    const auto portsWhere = [&](const std::vector<std::string>& names) {
        std::string connectors;
        for (const std::string& name : names) {
            connectors += "<ssd:Connector name='" + name + "' kind='output'/>";
        }
        const std::string changed =
            description("<ssd:Elements><ssd:Component name='Gain'><ssd:Connectors>" + connectors +
                        "</ssd:Connectors></ssd:Component></ssd:Elements>");
        const auto model =
            openModel(write("changed.ssp", Archive::pack(&saved, {{"SystemStructure.ssd", changed}})));
        std::string ports;
        for (const Port& port : model->findByPath(u"Gain")->ports(PortKind::Output)) {
            ports += toUtf8(port.name) + " ";
        }
        OpenModels::close(u"plant");
        Warnings::take();
        return ports;
    };
    EXPECT_EQ(portsWhere({"first", "y2", "y3"}), "first y2 y3 ");
    EXPECT_EQ(portsWhere({"y3", "y2", "first", "second"}), "first y2 y3 second ");
    EXPECT_EQ(portsWhere({"new", "y3", "y1", "y2"}), "y1 y2 y3 new ");
    EXPECT_EQ(portsWhere({"y3", "y1"}), "y1 y3 ");
    EXPECT_EQ(portsWhere({"a", "y2", "y2", "b", "c"}), "a y2 y2 b c ");
}

TEST_F(ModelFileTest, WhatIsLeftOverIsToldInBounds)
{
    saveModel(*m_model, m_file);
    OpenModels::close(u"plant");
    std::string kept = R"({"format":"com.zelmar.hmi.model","version":1,"lastNumber":1,"blocks":[)";
    for (int i = 0; i < 1002; ++i) {
        kept += R"({"name":")" + std::string(10000, 'n') + R"(","number":1},)";
    }
    kept.back() = ']';
    openModel(pack({{"SystemStructure.ssd", description("")}, {toolDataEntry, kept + "}"}}));
    const std::vector<Warning> warnings = Warnings::take();
    ASSERT_EQ(warnings.size(), 1001U);
    EXPECT_LT(warnings.front().text.size(), 1000U);
    EXPECT_TRUE(warnings.back().text.ends_with(": 2 more are no longer there.")) << warnings.back().text;
}

TEST_F(ModelFileTest, SignalsStayOnTheirPortsBesideOneThatWasDeletedElsewhere)
{
    m_gain.addPort(PortKind::Output, u"y3");
    addSignal(m_gain, 1, "one");
    addSignal(m_gain, 2, "two");
    addSignal(m_gain, 3, "three");
    setObservers();
    saveModel(*m_model, m_file);
    OpenModels::close(u"plant");
    const Archive saved(bytesOf(m_file));
    const std::string changed = description(
        "<ssd:Elements><ssd:System name='Panel'><ssd:Elements><ssd:Component name='Gauge' source=''/>"
        "<ssd:Component name='Lamp' source=''/></ssd:Elements></ssd:System>"
        "<ssd:Component name='Gain' source=''><ssd:Connectors>"
        "<ssd:Connector name='y1' kind='output'/><ssd:Connector name='y3' kind='output'/>"
        "</ssd:Connectors></ssd:Component></ssd:Elements>");
    const auto model =
        openModel(write("changed.ssp", Archive::pack(&saved, {{"SystemStructure.ssd", changed}})));
    std::vector<std::string> warnings;
    for (const Warning& warning : Warnings::take()) {
        warnings.push_back(warning.id.key());
    }
    EXPECT_EQ(warnings, (std::vector<std::string>{"SignalUnbound", "LeftOver"}));
    const OwnedValue signals = property(model->observers(), "Signals");
    ASSERT_EQ(elementsIn(signals.get()), 2U);
    EXPECT_EQ(read(element(signals, 1), "UUID") + read(element(signals, 1), "OutputPortIndex_"),
              "\"one\"double 1");
    EXPECT_EQ(read(element(signals, 2), "UUID") + read(element(signals, 2), "OutputPortIndex_"),
              "\"three\"double 2");
}

TEST_F(ModelFileTest, LastNumberIsNotFollowedByTheFirst)
{
    OpenModels::close(u"plant");
    const auto file =
        pack({{"SystemStructure.ssd", description("")},
              {toolDataEntry,
               R"({"format":"com.zelmar.hmi.model","version":1,"lastNumber":4294967294,"blocks":[]})"}});
    const auto model = openModel(file);
    EXPECT_EQ(model->add(model->root(), u"A", BlockKind::Component).number(), 4294967295U);
    EXPECT_EQ(hostError([&] { model->add(model->root(), u"B", BlockKind::Component); }), "NoNumberLeft");
    EXPECT_EQ(model->blockCount(), 1U);
    saveModel(*model, m_file);
    OpenModels::close(u"plant");
    EXPECT_EQ(openModel(m_file)->findByPath(u"A")->number(), 4294967295U);
}

TEST_F(ModelFileTest, WarningsAboutConnectionsComeToAnEnd)
{
    OpenModels::close(u"plant");
    std::string connections =
        "<ssd:Elements><ssd:System name='" + std::string(5000, 's') + "'><ssd:Connections>";
    for (int i = 0; i < 2000; ++i) {
        connections += "<ssd:Connection startElement='No' endElement='No'/>";
    }
    openModel(write("a.ssd", description(connections + "</ssd:Connections></ssd:System></ssd:Elements>")));
    const std::vector<Warning> warnings = Warnings::take();
    ASSERT_EQ(warnings.size(), 1001U);
    EXPECT_LT(warnings.front().text.size(), 1000U);
    EXPECT_TRUE(warnings.back().text.ends_with("they are not listed."));
}

// ---- refusals ---------------------------------------------------------------------------------------

TEST_F(ModelFileTest, NewerVersionIsRefusedWithBothNumbers)
{
    OpenModels::close(u"plant");
    const auto file = pack({{"SystemStructure.ssd", description("")},
                            {toolDataEntry, R"({"format":"com.zelmar.hmi.model","version":7,"more":[]})"}});
    EXPECT_EQ(refusal([&] { openModel(file); }),
              file.string() +
                  ": extra/com.zelmar.hmi/model.json: It is of version 7; versions up to 1 are known here.");
    EXPECT_TRUE(OpenModels::all().empty());
}

TEST_F(ModelFileTest, StrangeToolDataIsRefused)
{
    OpenModels::close(u"plant");
    const std::string head = R"({"format":"com.zelmar.hmi.model","version":1,"lastNumber":3,"blocks":)";
    for (
        const std::string& text :
        {std::string("{}"), std::string("[]"), std::string(R"({"format":"x","version":1})"), head + "7}",
         head + R"([{"name":"A"}]})", head + R"([{"name":"A","number":0}]})",
         head + R"([{"name":"A","number":9}]})", head + R"([{"name":"A","number":4294967295}]})",
         head + R"([{"name":"A","number":1},{"name":"A","number":2}]})",
         head + R"([{"name":"A","number":1,"colour":"red"}]})",
         head + R"([{"name":"A","number":1,"chart":{"name":"","objects":[]}}]})",
         head +
             R"([{"name":"A","number":1,"chart":{"name":"c","objects":[{"kind":"x","name":"s","parent":0}]}}]})",
         head +
             R"([{"name":"A","number":1,"chart":{"name":"c","objects":[{"kind":"state","name":"s","parent":5}]}}]})",
         head + "[]}, "}) {
        const auto file =
            pack({{"SystemStructure.ssd",
                   description("<ssd:Elements><ssd:Component name='A' source=''/></ssd:Elements>")},
                  {toolDataEntry, text}});
        const std::string reason = refusal([&] { openModel(file); });
        EXPECT_TRUE(reason.starts_with(file.string() + ": " + toolDataEntry + ": ")) << text << "\n"
                                                                                     << reason;
        EXPECT_TRUE(OpenModels::all().empty()) << text;
    }
}

TEST_F(ModelFileTest, RefusedCollectionLeavesNoModelOpen)
{
    OpenModels::close(u"plant");
    for (const char* text : {"7.0", "true", "["}) {
        const auto file = pack({{"SystemStructure.ssd", description("")}, {clientsEntry, text}});
        const std::string reason = refusal([&] { openModel(file); });
        EXPECT_TRUE(reason.starts_with(file.string() + ": " + clientsEntry + ": ")) << text << "\n" << reason;
        EXPECT_TRUE(OpenModels::all().empty()) << text;
    }
}

TEST_F(ModelFileTest, ArchiveWithoutADescriptionIsRefused)
{
    OpenModels::close(u"plant");
    const auto file = pack({{"readme.txt", "nothing"}});
    EXPECT_TRUE(refusal([&] { openModel(file); }).starts_with(file.string() + ": SystemStructure.ssd: "));
}

TEST_F(ModelFileTest, FileThatIsNoArchiveIsRefused)
{
    const auto file = write("no.ssp", "not an archive");
    EXPECT_TRUE(refusal([&] { openModel(file); }).starts_with(file.string() + ": "));
}

TEST_F(ModelFileTest, RefusedDescriptionIsNamedWithItsLine)
{
    const auto file = pack({{"SystemStructure.ssd", "<a/>"}});
    EXPECT_TRUE(refusal([&] { openModel(file); }).starts_with(file.string() + ": SystemStructure.ssd:1: "));
}

TEST_F(ModelFileTest, TakenNameLeavesTheOpenModelAsItWas)
{
    addSignal(m_gain, 1, "a");
    setObservers();
    saveModel(*m_model, m_file);
    EXPECT_EQ(hostError([&] { openModel(m_file); }), "ModelAlreadyOpen");
    EXPECT_EQ(OpenModels::find(u"plant"), m_model);
    EXPECT_NE(m_model->observers(), nullptr);
}

TEST_F(ModelFileTest, ModelIsSavedAsAnArchiveOnly)
{
    const auto file = write("plant.ssd", "precious");
    EXPECT_EQ(hostError([&] { saveModel(*m_model, file); }), "NotAnArchiveName");
    EXPECT_EQ(bytesOf(file), "precious");
}

TEST_F(ModelFileTest, ClosedModelIsNotSavedWithoutItsObservers)
{
    OpenModels::close(u"plant");
    EXPECT_EQ(hostError([&] { saveModel(*m_model, m_file); }), "ModelNotOpen");
    EXPECT_FALSE(std::filesystem::exists(m_file));
}

TEST_F(ModelFileTest, ModelThatIsClosedWhileItIsSavedIsNotSavedWithoutItsObservers)
{
    setObservers();
    saveModel(*m_model, m_file);
    const std::string former = bytesOf(m_file);
    const FileProgress close = [](const char* step, std::size_t, std::size_t) {
        if (std::string(step) == "instrumented signals") {
            OpenModels::close(u"plant");
        }
    };
    EXPECT_EQ(hostError([&] { saveModel(*m_model, m_file, close); }), "UnwritableFile");
    EXPECT_EQ(bytesOf(m_file), former);
}

TEST_F(ModelFileTest, ModelThatIsEditedWhileItIsSavedIsNotSavedInTwoStates)
{
    const FileProgress edit = [this](const char* step, std::size_t, std::size_t) {
        if (std::string(step) == "tool data") {
            m_model->history().renameBlock(m_gain, u"Other");
        }
    };
    EXPECT_EQ(hostError([&] { saveModel(*m_model, m_file, edit); }), "UnwritableFile");
    EXPECT_FALSE(std::filesystem::exists(m_file));
}

TEST_F(ModelFileTest, CollectionThatShrinksWhileItIsSavedIsNotSaved)
{
    addSignal(m_gain, 1, "a");
    setObservers();
    const FileProgress shrink = [this](const char* step, std::size_t, std::size_t) {
        if (std::string(step) == "streaming clients") {
            ObjectAccess::callMethod(m_signals.get(), "remove", {makeNumber(1.0, nvClassID::UInt32).get()});
        }
    };
    EXPECT_EQ(hostError([&] { saveModel(*m_model, m_file, shrink); }), "UnwritableFile");
}

TEST_F(ModelFileTest, ArchiveThatHasNoRoomForOurEntriesIsOpenedWithAWarning)
{
    OpenModels::close(u"plant");
    for (const auto& [entry, content] : {std::pair<std::string, std::string>{"extra", "a file"},
                                         {std::string(toolDataEntry) + "/", ""},
                                         {std::string(toolDataEntry) + "/a", "a file"}}) {
        const auto file = pack({{"SystemStructure.ssd", description("")}, {entry, content}});
        const auto model = openModel(file);
        const std::vector<Warning> warnings = Warnings::take();
        ASSERT_EQ(warnings.size(), 1U);
        EXPECT_EQ(warnings[0].id.key(), "NotSavable");
        EXPECT_TRUE(warnings[0].text.starts_with(file.string() + ": The archive has an entry \"" + entry));
        const std::string reason = refusal([&] { saveModel(*model, m_file); });
        EXPECT_TRUE(reason.starts_with(m_file.string() + ": \"extra/com.zelmar.hmi/")) << reason;
        EXPECT_FALSE(std::filesystem::exists(m_file));
        OpenModels::close(u"plant");
    }
}

TEST_F(ModelFileTest, ModelIsSavedAsItIsWhenItsSavingBegins)
{
    m_gain.addChart(u"Mode");
    addSignal(m_gain, 1, "a");
    setObservers();
    saveModel(*m_model, m_file);
    std::string before = bytesOf(m_file);
    for (const std::string last :
         {"tool data", "instrumented signals", "streaming clients", "archive", "file"}) {
        const FileProgress change = [&](const char* step, std::size_t, std::size_t) {
            if (step == last) {
                m_gain.chart()->addState(u"State of " + toUtf16(last.c_str()));
                ObjectAccess::callMethod(m_signals.get(), "set",
                                         {makeDouble(1).get(), make("SignalSpecification", {}).get()});
            }
        };
        saveModel(*m_model, m_folder / "meanwhile.ssp", change);
        EXPECT_EQ(bytesOf(m_folder / "meanwhile.ssp"), before) << last;
        saveModel(*m_model, m_file);
        before = bytesOf(m_file);
    }
    Warnings::clear();  // about the signals on no block
}

TEST_F(ModelFileTest, ModelThatIsClosedOrRenamedWhileItIsOpenedIsNotOpened)
{
    setObservers();
    saveModel(*m_model, m_file);
    OpenModels::close(u"plant");
    const auto openWhile = [this](const std::function<void()>& work) {
        return hostError([&] {
            openModel(m_file, [&work](const char* step, std::size_t, std::size_t) {
                if (std::string(step) == "streaming clients") {
                    work();
                }
            });
        });
    };
    EXPECT_EQ(openWhile([] { OpenModels::rename(u"plant", u"other"); }), "ModelNotOpen");
    EXPECT_TRUE(OpenModels::all().empty());
    EXPECT_EQ(openWhile([] { OpenModels::close(u"plant"); }), "ModelNotOpen");
    EXPECT_TRUE(OpenModels::all().empty());
    const auto namesake = std::make_shared<Model>(u"plant");
    EXPECT_EQ(openWhile([&namesake] {
                  OpenModels::close(u"plant");
                  OpenModels::add(namesake);
              }),
              "ModelNotOpen");
    EXPECT_EQ(OpenModels::find(u"plant"), namesake);
}

/// What is said of a file whose one entry of ours is this one.
class ForeignRecordsTest : public ModelFileTest {
protected:
    std::string saidOf(const char* entry, const std::string& text)
    {
        OpenModels::closeAll();
        const auto file = pack({{"SystemStructure.ssd", description("")}, {entry, text}});
        const std::string reason = refusal([&] { openModel(file); });
        const std::string begin = file.string() + ": " + entry + ": ";
        EXPECT_TRUE(reason.starts_with(begin)) << reason;
        EXPECT_TRUE(OpenModels::all().empty());
        return reason.substr(std::min(begin.size(), reason.size()));
    }
};

TEST_F(ForeignRecordsTest, ElementsThatAreNothingInTheTextAreNotBelieved)
{
    const std::string many = R"({"class":"struct","size":[1000000,1000000],"fields":[],"values":[]})";
    for (const char* entry : {signalsEntry, clientsEntry}) {
        EXPECT_EQ(saidOf(entry, many), "/0/UUID: expected text, found nothing.");
        EXPECT_EQ(saidOf(entry, "[" + many + "]"), "/0/UUID: expected text, found nothing.");
    }
}

TEST_F(ForeignRecordsTest, MissingFieldIsNamedWithItsRecord)
{
    addSignal(m_gain, 1, "one");
    addSignal(m_gain, 2, "two");
    setObservers();
    saveModel(*m_model, m_file);
    std::string json = Archive(bytesOf(m_file)).read(signalsEntry);
    const std::string field = "\"OutputPortIndex_\":2.0,";
    json.erase(json.find(field), field.size());
    EXPECT_EQ(saidOf(signalsEntry, json), "/1/OutputPortIndex_: expected a number, found nothing.");
}

TEST_F(ForeignRecordsTest, FieldOfAnotherKindIsNamedWithItsRecord)
{
    addClient(&m_gauge, "client", "signal");
    setObservers();
    saveModel(*m_model, m_file);
    const std::string json = Archive(bytesOf(m_file)).read(clientsEntry);
    const std::string field = R"("ModelPath_":{"class":"cell","values":["Panel/Gauge"]})";
    const auto with = [&](const std::string& value) {
        std::string changed = json;
        return changed.replace(changed.find(field), field.size(), "\"ModelPath_\":" + value);
    };
    EXPECT_EQ(saidOf(clientsEntry, with("\"Panel/Gauge\"")),
              "/0/ModelPath_: expected a cell array of texts, found text.");
    EXPECT_EQ(saidOf(clientsEntry, with("7.0")),
              "/0/ModelPath_: expected a cell array of texts, found the number 7.0.");
    EXPECT_EQ(saidOf(clientsEntry, with("null")),
              "/0/ModelPath_: expected a cell array of texts, found nothing.");
    EXPECT_EQ(saidOf(clientsEntry, with(R"({"class":"cell","values":[1.0]})")),
              "/0/ModelPath_: expected a cell array of texts, found an object.");
    EXPECT_EQ(saidOf(clientsEntry, "[{}]"), "/0/UUID: expected text, found nothing.");
}

TEST_F(ForeignRecordsTest, RecordsInTheEarlierFormHaveTheSameErrors)
{
    EXPECT_EQ(saidOf(clientsEntry, R"({"class":"struct","fields":[],"values":[]})"),
              "/0/UUID: expected text, found nothing.");
    EXPECT_EQ(
        saidOf(clientsEntry, R"({"class":"struct","size":[1,2],"fields":["UUID"],"values":[["a",7.0]]})"),
        "/0/ModelPath_: expected a cell array of texts, found nothing.");
    EXPECT_EQ(saidOf(signalsEntry, R"({"class":"struct","size":[1,2],"fields":["UUID"],"values":[["a"]]})"),
              "/values/0: expected 2 elements, found 1.");
    EXPECT_EQ(saidOf(signalsEntry, R"({"class":"cell","values":[null]})"),
              "/: expected an array of records, found an object.");
}

TEST_F(ForeignRecordsTest, WhatDescribesNothingIsRefusedAtTheFirstItem)
{
    std::string arrays = "[[]";
    for (int i = 0; i < 1'000'000; ++i) {
        arrays += ",[]";
    }
    EXPECT_EQ(saidOf(signalsEntry, arrays + "]"), "/0: expected a record, found an array.");
    EXPECT_EQ(saidOf(toolDataEntry, arrays + "]"), "/: expected an object, found an array.");
}

TEST_F(ForeignRecordsTest, ItemsAreLimited)
{
    std::string text = R"([{"UUID":{"class":"cell","values":[)";
    for (int i = 0; i < 2'000'000; ++i) {
        text += "\"\",";
    }
    EXPECT_TRUE(saidOf(signalsEntry, text + "\"\"]}}]").ends_with(" items."));
}

TEST_F(ForeignRecordsTest, EntryOfOursThatDeclaresTooMuchIsNotUnpacked)
{
    for (const auto& [entry, maximum] :
         {std::pair{signalsEntry, 512U}, std::pair{clientsEntry, 512U}, std::pair{toolDataEntry, 512U}}) {
        OpenModels::closeAll();
        const std::string text = description("");
        const auto file =
            write("declared.ssp", zipBytes({{.name = "SystemStructure.ssd", .packed = text},
                                            {.name = entry,
                                             .packed = deflatedPlainly("x"),
                                             .method = 8,
                                             .unpackedSize = (std::uint64_t{maximum} << 20U) + 1}}));
        EXPECT_TRUE(refusal([&] { openModel(file); }).ends_with(" bytes; 536870912 are accepted."));
    }
    OpenModels::closeAll();
    const auto file = write("declared.ssp", zipBytes({{.name = "SystemStructure.ssd",
                                                       .packed = deflatedPlainly("x"),
                                                       .method = 8,
                                                       .unpackedSize = (std::uint64_t{128} << 20U) + 1}}));
    EXPECT_TRUE(refusal([&] { openModel(file); }).ends_with(" bytes; 134217728 are accepted."));
}

TEST_F(ModelFileTest, NameThatNoDescriptionCanHoldIsRefused)
{
    saveModel(*m_model, m_file);
    const std::string former = bytesOf(m_file);
    m_model->rename(m_gain, std::u16string(u"a\x01") + u"b");
    EXPECT_TRUE(refusal([&] {
                    saveModel(*m_model, m_file);
                }).starts_with(m_file.string() + ": SystemStructure.ssd: "));
    EXPECT_EQ(bytesOf(m_file), former);
}

TEST_F(ModelFileTest, ModelTooDeepToBeOpenedAgainIsNotSaved)
{
    Block* system = &m_model->root();
    for (int i = 0; i < 130; ++i) {
        system = &m_model->add(*system, u"s", BlockKind::System);
    }
    EXPECT_TRUE(refusal([&] { saveModel(*m_model, m_file); }).starts_with(m_file.string()));
    EXPECT_FALSE(std::filesystem::exists(m_file));
}

// ---- progress ---------------------------------------------------------------------------------------

TEST_F(ModelFileTest, EveryStepIsToldBeforeItBegins)
{
    std::string told;
    const FileProgress tell = [&told](const char* step, std::size_t done, std::size_t total) {
        told += std::string(step) + " " + std::to_string(done) + "/" + std::to_string(total) + "; ";
    };
    saveModel(*m_model, m_file, tell);
    EXPECT_EQ(told,
              "diagram 0/6; tool data 1/6; instrumented signals 2/6; streaming clients 3/6; archive 4/6; "
              "file 5/6; ");
    OpenModels::close(u"plant");
    told.clear();
    openModel(m_file, tell);
    EXPECT_EQ(told,
              "file 0/5; diagram 1/5; tool data 2/5; instrumented signals 3/5; streaming clients 4/5; ");
}

TEST_F(ModelFileTest, ProgressThatThrowsEndsTheWork)
{
    saveModel(*m_model, m_file);
    const std::string former = bytesOf(m_file);
    m_model->rename(m_gain, u"Other");
    for (const std::size_t last : {0U, 1U, 2U, 3U, 4U, 5U}) {
        const FileProgress stop = [last](const char*, std::size_t done, std::size_t) {
            if (done == last) {
                throw std::runtime_error("enough");
            }
        };
        EXPECT_THROW(saveModel(*m_model, m_file, stop), std::runtime_error);
        EXPECT_EQ(bytesOf(m_file), former);
    }
    OpenModels::close(u"plant");
    for (const std::size_t last : {0U, 1U, 2U, 3U, 4U}) {
        const FileProgress stop = [last](const char*, std::size_t done, std::size_t) {
            if (done == last) {
                throw std::runtime_error("enough");
            }
        };
        EXPECT_THROW(openModel(m_file, stop), std::runtime_error);
        EXPECT_TRUE(OpenModels::all().empty());
    }
}

// ---- descriptions as files of their own -------------------------------------------------------------

TEST_F(ModelFileTest, FileWithANameOutsideAsciiIsOpened)
{
    OpenModels::close(u"plant");
    EXPECT_EQ(openModel(write("Gewächshaus 𠮷.ssd", description("")))->name(), u"plant");
}

TEST_F(ModelFileTest, FileWhoseNameIsNoTextIsNamedInText)
{
    const auto file = m_folder / "no\xFF" / "plant.ssp";
    const std::string named = (m_folder / "no\uFFFD" / "plant.ssp").string() + ": ";
    EXPECT_TRUE(refusal([&] { saveModel(*m_model, file); }).starts_with(named));
    EXPECT_TRUE(refusal([&] { openModel(file); }).starts_with(named));
}

TEST_F(ModelFileTest, MissingFileIsUnreadable)
{
    const std::filesystem::path file = m_folder / "missing.ssd";
    EXPECT_EQ(refusal([&] { openModel(file); }), file.string() + ": No such file or directory");
}

TEST_F(ModelFileTest, FolderIsUnreadable)
{
    EXPECT_EQ(refusal([&] { openModel(m_folder); }), m_folder.string() + ": Is a directory");
}

TEST_F(ModelFileTest, RefusedFileOpensNothing)
{
    OpenModels::close(u"plant");
    const std::filesystem::path file = write("bad.ssd", description("<"));
    EXPECT_TRUE(refusal([&] { openModel(file); }).starts_with(file.string() + ":3: "));
    EXPECT_TRUE(OpenModels::all().empty());
}

TEST_F(ModelFileTest, DanglingConnectionsAreHostWarnings)
{
    OpenModels::close(u"plant");
    const std::filesystem::path file =
        write("a.ssd",
              description(
                  "<ssd:Connections><ssd:Connection startElement='No' endElement='No'/></ssd:Connections>"));
    openModel(file);
    const std::vector<Warning> warnings = Warnings::take();
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_EQ(warnings[0].id.catalog(), "reference_host:diagram");
    EXPECT_EQ(warnings[0].id.key(), "DanglingConnection");
    EXPECT_EQ(warnings[0].text,
              file.string() + ":3: A connection ends at \"No\", which \"plant\" does not hold.");
}

TEST_F(ModelFileTest, ModelThatIsNotOpenedWarnsOfNothing)
{
    const std::filesystem::path file =
        write("a.ssd",
              description(
                  "<ssd:Connections><ssd:Connection startElement='No' endElement='No'/></ssd:Connections>"));
    EXPECT_EQ(hostError([&] { openModel(file); }), "ModelAlreadyOpen");
    EXPECT_TRUE(Warnings::reported().empty());
}

}  // namespace

}  // namespace reference_host
