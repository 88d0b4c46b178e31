#include "tests/reference_host/ssp/SsdWriterTest.hpp"

#include "tests/reference_host/ssp/FileRefusal.hpp"

#include <utility>

namespace reference_host {

namespace {

const std::string head =
    "<?xml version='1.0' encoding='UTF-8'?>\n"
    "<ssd:SystemStructureDescription name='d' version='1.0'\n"
    "    xmlns:ssd='http://ssp-standard.org/SSP1/SystemStructureDescription'\n"
    "    xmlns:ssc='http://ssp-standard.org/SSP1/SystemStructureCommon'>\n";
const std::string tail = "</ssd:SystemStructureDescription>\n<!-- the end -->\n";

/// Everything that a description may hold beside the diagram, written in as many ways.
const std::string plant = head + R"(  <?tool keep="this"?>
  <ssd:System  name = 'plant'
      description='a &lt;plant&gt; &#x41;' >
    <!-- outside -->
    <ssd:Connectors>
      <ssd:Connector name="in" kind="input"/>
    </ssd:Connectors>
    <ssd:ParameterBindings><ssd:ParameterBinding source="a.ssv"/></ssd:ParameterBindings>
    <ssd:Elements>
      <!-- the pump -->
      <ssd:Component source='pump.fmu' name='Pump'>
        <ssd:Connectors>
          <ssd:Connector kind="output" name="flow"><ssc:Real unit="m3_per_s"></ssc:Real></ssd:Connector>
          <ssd:Connector kind="output" name="speed"><ssc:Real/></ssd:Connector>
          <ssd:Connector kind="input" name="volt"><ssc:Real/></ssd:Connector>
        </ssd:Connectors>
        <ssd:Annotations><ssc:Annotation type="x"><![CDATA[ a < b ]]></ssc:Annotation></ssd:Annotations>
      </ssd:Component>
      <ssd:SignalDictionaryReference name="bus" dictionary="d"/>
      <ssd:System name="Tank">
        <ssd:ElementGeometry x1="1" y1="2" x2="3" y2="4"/>
        <ssd:Elements>
          <ssd:Component name="Valve" source="valve.fmu"/>
        </ssd:Elements>
      </ssd:System>
      <ssd:Component name="Drain" source="drain.fmu"/>
    </ssd:Elements>
    <ssd:Connections>
      <ssd:Connection startConnector="in" endElement="Pump" endConnector="volt"/>
      <ssd:Connection startElement='Pump' startConnector='flow' endElement='bus' endConnector='b'>
        <ssc:LinearTransformation factor="2"/>
      </ssd:Connection>
    </ssd:Connections>
    <ssd:SystemGeometry x1="0" y1="0" x2="9" y2="9"/>
  </ssd:System>
  <ssd:Units><ssc:Unit name="m3_per_s"><ssc:BaseUnit m="3" s="-1"/></ssc:Unit></ssd:Units>
)" + tail;

/// The document with pieces replaced, each of which it must hold.
std::string with(std::string document, const std::vector<std::pair<std::string, std::string>>& changes)
{
    for (const auto& [former, now] : changes) {
        const std::size_t place = document.find(former);
        EXPECT_NE(place, std::string::npos) << former;
        if (place != std::string::npos) {
            document.replace(place, former.size(), now);
        }
    }
    return document;
}

std::string holding(const std::string& contents)
{
    return head + "  <ssd:System name='plant'>\n" + contents + "  </ssd:System>\n" + tail;
}

}  // namespace

// ---- what stays -------------------------------------------------------------------------------------

TEST_F(SsdWriterTest, UneditedDocumentIsGivenBackByteForByte)
{
    EXPECT_EQ(edited(plant, [](Model&) {}), plant);
}

TEST_F(SsdWriterTest, UndoneEditsLeaveNoTrace)
{
    EXPECT_EQ(edited(plant,
                     [](Model& model) {
                         model.history().deleteOutput(at(model, u"Pump"), 1);
                         model.history().renameBlock(at(model, u"Tank"), u"Vessel");
                         model.history().moveBlock(at(model, u"Pump"), at(model, u"Vessel"));
                         model.history().deleteBlock(at(model, u"Vessel"));
                         while (model.history().undo()) {
                         }
                     }),
              plant);
}

TEST_F(SsdWriterTest, NewOrderOfPortsIsNotWritten)
{
    EXPECT_EQ(edited(plant,
                     [](Model& model) {
                         model.history().reorderOutputs(at(model, u"Pump"), {2, 1});
                     }),
              plant);
}

// ---- names ------------------------------------------------------------------------------------------

TEST_F(SsdWriterTest, RenamedBlockChangesItsNameAndWhereItIsConnected)
{
    EXPECT_EQ(edited(plant, [](Model& model) { model.history().renameBlock(at(model, u"Pump"), u"P 1"); }),
              inOneForm(with(plant, {{"name='Pump'", "name='P 1'"},
                                     {"endElement=\"Pump\"", "endElement=\"P 1\""},
                                     {"startElement='Pump'", "startElement='P 1'"}})));
}

TEST_F(SsdWriterTest, RenamedModelRenamesTheOutermostSystem)
{
    EXPECT_EQ(edited(plant, [](Model& model) { model.history().renameModel(u"works"); }),
              inOneForm(with(plant, {{"name = 'plant'", "name = 'works'"}})));
}

TEST_F(SsdWriterTest, NamesKeepWhatXmlWouldTakeForItself)
{
    const std::u16string name = u"a<b>&\"c'\t\n\r \x85\u2028\U0001F44D ";
    const auto model =
        readModel(edited(plant, [&](Model& m) { m.history().renameBlock(at(m, u"Pump"), name); }));
    EXPECT_NE(model->findByPath(name), nullptr);
    EXPECT_EQ(model->root().connections()[0].end.element, model->findByPath(name));
}

TEST_F(SsdWriterTest, NameThatXmlCannotHoldIsRefused)
{
    const std::vector<std::pair<std::u16string, std::string>> names{
        {u"a\x1", "U+0001"},     {std::u16string(u"\0b", 2), "U+0000"},
        {u"\xFFFE", "U+FFFE"},   {u"\xFFFF", "U+FFFF"},
        {u"ab\xD800", "U+D800"}, {u"\xDC00z", "U+DC00"}};
    for (const auto& [name, code] : names) {
        const std::u16string& bad = name;
        const std::string reason = fileRefusal("UnwritableName", [&] {
            edited(plant, [&](Model& model) { model.history().renameBlock(at(model, u"Pump"), bad); });
        });
        EXPECT_NE(reason.find(code), std::string::npos) << reason;
    }
}

/// Every name of up to four of these pieces has a counterpart in the host, and is written as it was.
TEST_F(SsdWriterTest, NamesWithSlashesColonsAndTheirEscapesComeBack)
{
    std::vector<std::string> names{""};
    for (std::size_t i = 0; i < 259; ++i) {
        for (const char* piece : {"%", "25", "2F", "3A", "/", ":"}) {
            names.push_back(names[i] + piece);
        }
    }
    std::string components;
    for (std::size_t i = 1; i < names.size(); ++i) {
        components += "<ssd:Component name=\"" + names[i] + "\" source=\"\"/>\n";
    }
    const std::string document = holding("    <ssd:Elements>" + components +
                                         "<ssd:Component name=\"last\" source=\"\"/></ssd:Elements>\n");
    EXPECT_EQ(
        edited(document, [](Model& model) { model.history().renameBlock(at(model, u"last"), u"a%2Fb"); }),
        inOneForm(with(document, {{"name=\"last\"", "name=\"a/b\""}})));
}

TEST_F(SsdWriterTest, EscapedNamesAreWrittenIntoConnections)
{
    const std::string written =
        edited(plant, [](Model& model) { model.history().renameBlock(at(model, u"Pump"), u"P%3A%3A1"); });
    EXPECT_NE(written.find("name=\"P::1\""), std::string::npos);
    EXPECT_NE(written.find("startElement=\"P::1\""), std::string::npos);
    EXPECT_EQ(readModel(written)->root().connections()[1].start.element->name(), u"P%3A%3A1");
}

// ---- blocks -----------------------------------------------------------------------------------------

TEST_F(SsdWriterTest, DeletedBlockLeavesWithItsConnections)
{
    const std::string document =
        edited(plant, [](Model& model) { model.history().deleteBlock(at(model, u"Drain")); });
    EXPECT_EQ(document,
              inOneForm(with(plant, {{"\n      <ssd:Component name=\"Drain\" source=\"drain.fmu\"/>", ""}})));
}

TEST_F(SsdWriterTest, CommentsOutliveTheBlockBesideThem)
{
    const std::string document =
        edited(plant, [](Model& model) { model.history().deleteBlock(at(model, u"Pump")); });
    EXPECT_NE(document.find("<!-- the pump -->\n      <ssd:SignalDictionaryReference"), std::string::npos);
}

TEST_F(SsdWriterTest, ContainerGoesWithTheLastThatItHeld)
{
    const std::string document = edited(plant, [](Model& model) {
        model.history().deleteBlock(at(model, u"Tank/Valve"));
        model.history().deleteBlock(at(model, u"Pump"));
    });
    EXPECT_EQ(document.find("<ssd:Elements>", document.find("ElementGeometry")), std::string::npos);
    EXPECT_EQ(document.find("Connections"), std::string::npos);
    EXPECT_NE(document.find("y2=\"4\"/>\n      </ssd:System>"), std::string::npos) << document;
}

TEST_F(SsdWriterTest, CommentsOutliveTheirContainer)
{
    const std::string document =
        holding("    <ssd:Elements> <!-- kept --> <ssd:Component name='A' source=''/> </ssd:Elements>\n");
    EXPECT_EQ(
        edited(document, [](Model& model) { model.history().deleteBlock(at(model, u"A")); }),
        inOneForm(with(document,
                       {{"<ssd:Elements> <!-- kept --> <ssd:Component name='A' source=''/> </ssd:Elements>",
                         "<!-- kept -->"}})));
}

TEST_F(SsdWriterTest, NewBlocksStandOnLinesOfTheirOwn)
{
    const std::string document = edited(plant, [](Model& model) {
        EditHistory& history = model.history();
        Block& mixer = history.addBlock(model.root(), u"Mixer", BlockKind::System);
        history.addOutput(mixer, u"level", 1);
        history.addBlock(mixer, u"Motor", BlockKind::Component);
        history.addOutput(at(model, u"Mixer/Motor"), u"speed", 1);
    });
    EXPECT_EQ(document, inOneForm(with(plant, {{"    </ssd:Elements>\n    <ssd:Connections>",
                                                R"(      <ssd:System name="Mixer">
        <ssd:Connectors>
          <ssd:Connector name="level" kind="output"/>
        </ssd:Connectors>
        <ssd:Elements>
          <ssd:Component name="Motor" source="">
            <ssd:Connectors>
              <ssd:Connector name="speed" kind="output"/>
            </ssd:Connectors>
          </ssd:Component>
        </ssd:Elements>
      </ssd:System>
    </ssd:Elements>
    <ssd:Connections>)"}})));
}

TEST_F(SsdWriterTest, NewComponentHasNoSourceInTheSecondVersion)
{
    const std::string second = with(plant, {{"version='1.0'\n", "version='2.0'\n"}});
    EXPECT_EQ(edited(second,
                     [](Model& model) {
                         model.history().addBlock(at(model, u"Tank"), u"Lid", BlockKind::Component);
                     }),
              inOneForm(with(second,
                             {{"valve.fmu\"/>", "valve.fmu\"/>\n          <ssd:Component name=\"Lid\"/>"}})));
}

TEST_F(SsdWriterTest, DocumentInOneLineStaysInOneLine)
{
    const std::string line =
        "<?xml version='1.0'?>"
        "<SystemStructureDescription version='1.0' name='d' "
        "xmlns='http://ssp-standard.org/SSP1/SystemStructureDescription'><System name='p'><Elements>"
        "<Component name='A' source=''/></Elements></System></SystemStructureDescription>";
    EXPECT_EQ(
        edited(line,
               [](Model& model) {
                   Block& system = model.history().addBlock(model.root(), u"S", BlockKind::System);
                   model.history().moveBlock(at(model, u"A"), system);
                   model.history().addOutput(at(model, u"S/A"), u"y", 1);
               }),
        inOneForm(with(line, {{"<Component name='A' source=''/>",
                               "<System name=\"S\"><Elements><Component name='A' source=''><Connectors>"
                               "<Connector name=\"y\" kind=\"output\"/></Connectors></Component></Elements>"
                               "</System>"}})));
}

TEST_F(SsdWriterTest, MovedBlockTakesAlongWhatIsInIt)
{
    const std::string document = edited(plant, [](Model& model) {
        model.history().moveBlock(at(model, u"Tank"),
                                  model.history().addBlock(model.root(), u"Hall", BlockKind::System));
        model.history().moveBlock(at(model, u"Pump"), at(model, u"Hall/Tank"));
    });
    const auto model = readModel(document);
    EXPECT_NE(model->findByPath(u"Hall/Tank/Pump"), nullptr);
    const std::string formerly = inOneForm(plant);
    const std::size_t pump = formerly.find("<ssd:Component source=\"pump.fmu\"");
    const std::size_t end = formerly.find("</ssd:Component>", pump);
    EXPECT_NE(document.find(formerly.substr(pump, end - pump)), std::string::npos);
    EXPECT_NE(document.find("<ssd:ElementGeometry x1=\"1\" y1=\"2\" x2=\"3\" y2=\"4\"/>"), std::string::npos);
}

TEST_F(SsdWriterTest, BlockMovedOutOfADeletedSystemIsThere)
{
    const std::string document = edited(plant, [](Model& model) {
        model.history().moveBlock(at(model, u"Tank/Valve"), model.root());
        model.history().deleteBlock(at(model, u"Tank"));
    });
    EXPECT_NE(document.find("drain.fmu\"/>\n      <ssd:Component name=\"Valve\" source=\"valve.fmu\"/>\n"),
              std::string::npos)
        << document;
    EXPECT_EQ(document.find("Tank"), std::string::npos);
}

TEST_F(SsdWriterTest, OrderOfBlocksIsThatOfTheDiagram)
{
    const auto model = readModel(plant);
    model->move(at(*model, u"Drain"), model->root(), 0);
    model->move(at(*model, u"Tank"), model->root(), 1);
    const std::string document = write(*model, plant);
    EXPECT_EQ(describe(*readModel(document)), describe(*model));
}

// ---- connectors and connections ---------------------------------------------------------------------

TEST_F(SsdWriterTest, NewOutputsFollowTheConnectorsThatAreThere)
{
    EXPECT_EQ(
        edited(plant,
               [](Model& model) {
                   model.history().addOutput(at(model, u"Pump"), u"first", 1);
                   model.history().deleteOutput(at(model, u"Pump"), 3);
               }),
        inOneForm(with(
            plant,
            {{"\n          <ssd:Connector kind=\"output\" name=\"speed\"><ssc:Real/></ssd:Connector>", ""},
             {"name=\"volt\"><ssc:Real/></ssd:Connector>",
              "name=\"volt\"><ssc:Real/></ssd:Connector>\n"
              "          <ssd:Connector name=\"first\" kind=\"output\"/>"}})));
}

TEST_F(SsdWriterTest, FirstConnectorsComeBeforeEverythingElse)
{
    EXPECT_EQ(edited(plant, [](Model& model) { model.history().addOutput(at(model, u"Tank"), u"level", 1); }),
              inOneForm(with(plant, {{"<ssd:System name=\"Tank\">",
                                      "<ssd:System name=\"Tank\">\n        <ssd:Connectors>\n"
                                      "          <ssd:Connector name=\"level\" kind=\"output\"/>\n"
                                      "        </ssd:Connectors>"}})));
}

TEST_F(SsdWriterTest, DeletedOutputTakesItsConnections)
{
    const std::string document =
        edited(plant, [](Model& model) { model.history().deleteOutput(at(model, u"Pump"), 1); });
    EXPECT_EQ(document.find("flow"), std::string::npos);
    EXPECT_EQ(document.find("LinearTransformation"), std::string::npos);
    EXPECT_NE(document.find("<ssd:Connection startConnector=\"in\""), std::string::npos);
}

TEST_F(SsdWriterTest, NewConnectionsAreWrittenBehindTheElements)
{
    const auto model = readModel(plant);
    Block& tank = at(*model, u"Tank");
    Block& valve = at(*model, u"Tank/Valve");
    tank.addPort(PortKind::Input, u"u");
    tank.addConnection({{&tank, {}, u"u"}, {&valve, {}, u"x"}});
    const std::string document = write(*model, plant);
    EXPECT_NE(document.find(
                  "        </ssd:Elements>\n        <ssd:Connections>\n"
                  "          <ssd:Connection startConnector=\"u\" endElement=\"Valve\" endConnector=\"x\"/>\n"
                  "        </ssd:Connections>\n      </ssd:System>"),
              std::string::npos)
        << document;
}

TEST_F(SsdWriterTest, EndsThatLeadNowhereKeepTheirNames)
{
    const std::string document = holding(
        "    <ssd:Elements><ssd:Component name='A' source=''/></ssd:Elements>\n"
        "    <ssd:Connections>\n"
        "      <ssd:Connection startElement='B' startConnector='x' endElement='A' endConnector='y'/>\n"
        "    </ssd:Connections>\n");
    EXPECT_EQ(edited(document, [](Model& model) { model.history().renameBlock(at(model, u"A"), u"C"); }),
              inOneForm(with(document, {{"name='A'", "name='C'"}, {"endElement='A'", "endElement='C'"}})));
}

// ---- documents of all sorts -------------------------------------------------------------------------

TEST_F(SsdWriterTest, ModelWithoutADocumentMakesOne)
{
    Model model(u"new & first");
    model.history().addBlock(model.root(), u"A", BlockKind::Component);
    model.history().addOutput(at(model, u"A"), u"y", 1);
    model.root().addPort(PortKind::Other, u"p");
    EXPECT_EQ(write(model, ""), inOneForm(R"(<?xml version="1.0" encoding="UTF-8"?>
<ssd:SystemStructureDescription name="new &amp; first" version="1.0"
    xmlns:ssc="http://ssp-standard.org/SSP1/SystemStructureCommon"
    xmlns:ssd="http://ssp-standard.org/SSP1/SystemStructureDescription">
  <ssd:System name="new &amp; first">
    <ssd:Connectors>
      <ssd:Connector name="p" kind="parameter"/>
    </ssd:Connectors>
    <ssd:Elements>
      <ssd:Component name="A" source="">
        <ssd:Connectors>
          <ssd:Connector name="y" kind="output"/>
        </ssd:Connectors>
      </ssd:Component>
    </ssd:Elements>
  </ssd:System>
</ssd:SystemStructureDescription>
)"));
}

TEST_F(SsdWriterTest, SeveralContainersOfOneKindStayApart)
{
    const std::string document = holding(
        "    <ssd:Elements><ssd:Component name='A' source=''/></ssd:Elements>\n"
        "    <ssd:Elements><ssd:Component name='B' source=''/></ssd:Elements>\n");
    EXPECT_EQ(edited(document,
                     [](Model& model) {
                         model.history().addBlock(model.root(), u"C", BlockKind::Component);
                         model.history().deleteBlock(at(model, u"A"));
                     }),
              inOneForm(holding("    <ssd:Elements><ssd:Component name='B' source=''/>"
                                "<ssd:Component name=\"C\" source=\"\"/></ssd:Elements>\n")));
}

TEST_F(SsdWriterTest, MovedBlockTakesItsNamespacesAlong)
{
    const std::string document = holding(
        "    <ssd:Elements>\n"
        "      <s:System name='S' xmlns:s='http://ssp-standard.org/SSP1/SystemStructureDescription'"
        " xmlns:v='urn:vendor&amp;1'>\n"
        "        <s:Elements>\n"
        "          <s:Component name='A' source=''><v:thing/></s:Component>\n"
        "        </s:Elements>\n"
        "      </s:System>\n"
        "      <System name='T' xmlns='http://ssp-standard.org/SSP1/SystemStructureDescription'/>\n"
        "    </ssd:Elements>\n");
    const std::string written =
        edited(document, [](Model& model) { model.history().moveBlock(at(model, u"S/A"), at(model, u"T")); });
    EXPECT_NE(written.find("<Elements>\n          <s:Component xmlns:s=\"http://ssp-standard.org/SSP1/"
                           "SystemStructureDescription\" xmlns:v=\"urn:vendor&#38;1\" xmlns=\"\" name=\"A\" "
                           "source=\"\"><v:thing/></s:Component>\n        </Elements>"),
              std::string::npos)
        << written;
    EXPECT_NE(readModel(written)->findByPath(u"T/A"), nullptr);
}

TEST_F(SsdWriterTest, PrefixThatNobodyDeclaredGoesOnMeaningTheSame)
{
    const std::string document =
        "<SystemStructureDescription version='1.0' name='d' "
        "xmlns='http://ssp-standard.org/SSP1/SystemStructureDescription'>\n"
        "<System name='p'><Elements><ssd:System name='S'/>"
        "<System name='T' xmlns:ssd='urn:else'/></Elements></System></SystemStructureDescription>";
    const auto model = readModel(edited(document, [](Model& m) {
        m.history().moveBlock(at(m, u"S"), at(m, u"T"));
        m.history().addBlock(at(m, u"T/S"), u"A", BlockKind::Component);
    }));
    EXPECT_NE(model->findByPath(u"T/S/A"), nullptr);
}

TEST_F(SsdWriterTest, MarkInFrontOfTheDocumentStays)
{
    const std::string document = "\xEF\xBB\xBF" + plant;
    EXPECT_EQ(edited(document, [](Model& model) { model.history().renameModel(u"works"); }),
              "\xEF\xBB\xBF" + inOneForm(with(plant, {{"name = 'plant'", "name = 'works'"}})));
}

TEST_F(SsdWriterTest, EditedLatin1DocumentBecomesUtf8)
{
    const std::string document =
        with(plant, {{"encoding='UTF-8'", "encoding='iso-8859-1'"}, {"name='Pump'", "name='K\xFChlung'"}});
    EXPECT_EQ(edited(document, [](Model&) {}), document);
    const std::string written =
        edited(document, [](Model& model) { model.history().renameBlock(at(model, u"Tank"), u"Behälter"); });
    EXPECT_TRUE(written.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
    EXPECT_NE(written.find("name=\"Kühlung\""), std::string::npos);
    EXPECT_NE(readModel(written)->findByPath(u"Behälter/Valve"), nullptr);
}

TEST_F(SsdWriterTest, EditedUtf16DocumentBecomesUtf8)
{
    const std::u16string text = toUtf16(with(plant, {{"UTF-8", "UTF-16"}}).c_str());
    const std::string asUtf8 = edited(plant, [](Model& model) { model.history().renameModel(u"\u9F8D"); });
    for (const bool isLittle : {true, false}) {
        std::string document = isLittle ? "\xFF\xFE" : "\xFE\xFF";
        for (const char16_t unit : text) {
            const auto low = static_cast<char>(unit & 0xFFU);
            const auto high = static_cast<char>(unit >> 8U);
            document += isLittle ? low : high;
            document += isLittle ? high : low;
        }
        EXPECT_EQ(edited(document, [](Model&) {}), document);
        EXPECT_EQ(edited(document, [](Model& model) { model.history().renameModel(u"\u9F8D"); }), asUtf8);
    }
}

TEST_F(SsdWriterTest, EditedWindows1252DocumentBecomesUtf8)
{
    const std::string document =
        with(plant, {{"encoding='UTF-8'", "encoding='windows-1252'"}, {"name='Pump'", "name='\x80'"}});
    const std::string written =
        edited(document, [](Model& model) { model.history().renameBlock(at(model, u"Tank"), u"Behälter"); });
    EXPECT_EQ(written, inOneForm(with(plant, {{"name='Pump'", "name='€'"}, {"\"Tank\"", "\"Behälter\""}})));
}

TEST_F(SsdWriterTest, DocumentWithoutADeclarationGetsNone)
{
    const std::string document = plant.substr(plant.find('\n') + 1);
    const std::string written = edited(document, [](Model& model) { model.history().renameModel(u"works"); });
    EXPECT_TRUE(written.starts_with("<ssd:SystemStructureDescription ")) << written;
}

TEST_F(SsdWriterTest, LongTextsAreKept)
{
    const std::string document = holding(
        "<ssd:Elements><ssd:Component name='A' source=''/></ssd:Elements>"
        "<ssd:Annotations>" +
        std::string(30'000'000, 'x') + "</ssd:Annotations>");
    const std::string written =
        edited(document, [](Model& model) { model.history().renameBlock(at(model, u"A"), u"B"); });
    EXPECT_TRUE(written == inOneForm(with(document, {{"name='A'", "name='B'"}})));
}

TEST_F(SsdWriterTest, AsciiDocumentMayTakeAnyName)
{
    const std::string document = with(plant, {{"encoding='UTF-8'", "encoding=\"us-ascii\""}});
    const std::string written =
        edited(document, [](Model& model) { model.history().renameModel(u"Gewächshaus"); });
    EXPECT_EQ(readModel(written)->name(), u"Gewächshaus");
}

// ---- validity ---------------------------------------------------------------------------------------

/// The yardstick measures: each of these breaks one rule.
TEST_F(SsdWriterTest, SchemaRefusesWhatTheStandardDoesNotAllow)
{
    const std::string good = everything;
    EXPECT_TRUE(isValid(good));
    const std::vector<std::pair<std::string, std::string>> faults{
        {"<Component name=\"Rohr\" source=\"b.fmu\"/>", "<Component name=\"Rohr\"/>"},
        {"<Component name=\"Rohr\" source=\"b.fmu\"/>",
         "<Component name=\"Rohr\" source=\"\"><Connectors/></Component>"},
        {"<ElementGeometry x1=\"0\" y1=\"0\" x2=\"10\" y2=\"10\"/>",
         "<Connectors><Connector name='a' kind='input'/></Connectors>"},
        {"kind=\"input\"", "kind=\"inward\""},
        {"startConnector=\"in\"", "startElement=\"in\""},
        {"version=\"1.0\" name", "name"},
    };
    for (const auto& [former, now] : faults) {
        std::string bad = good;
        bad.replace(bad.find(former), former.size(), now);
        EXPECT_FALSE(isValid(bad)) << bad;
    }
}

TEST_F(SsdWriterTest, DescriptionOfTheSecondVersionStaysValid)
{
    std::string document =
        with(everything, {{"version=\"1.0\" name", "version=\"2.0\" name"}, {" source=\"\">", ">"}});
    ASSERT_TRUE(isValid(document, "ssd2.rng"));
    const std::string written = edited(document, [](Model& model) {
        Block& system = model.history().addBlock(model.root(), u"S", BlockKind::System);
        model.history().addBlock(system, u"C", BlockKind::Component);
        model.history().deleteBlock(at(model, u"Speicher/Rohr"));
    });
    EXPECT_TRUE(isValid(written, "ssd2.rng")) << written;
}

TEST_F(SsdWriterTest, DescriptionOfAModelWithoutADocumentIsValid)
{
    Model model(u"m");
    EXPECT_TRUE(isValid(write(model, "")));
    Block& system = model.add(model.root(), u"S", BlockKind::System);
    model.add(system, u"C", BlockKind::Component).addPort(PortKind::Other, u"p");
    system.addPort(PortKind::Input, u"u");
    system.addConnection({{&system, {}, u"u"}, {system.child(u"C"), {}, u"p"}});
    EXPECT_TRUE(isValid(write(model, "")));
}

// ---- refusals ---------------------------------------------------------------------------------------

TEST_F(SsdWriterTest, DocumentOfAnotherModelIsRefused)
{
    const auto model = readModel(plant);
    EXPECT_NE(fileRefusal("ForeignDescription", [&] { write(*model, holding("")); }).find("\"plant\""),
              std::string::npos);
    fileRefusal("ForeignDescription", [&] { write(*model, ""); });
}

TEST_F(SsdWriterTest, DiagramTooDeepToBeReadAgainIsRefused)
{
    const auto model = readModel(plant);
    Block* system = &model->root();
    for (int depth = 0; depth < 127; ++depth) {  // 256 elements, with the description and each one's Elements
        system = &model->add(*system, u"S", BlockKind::System);
    }
    EXPECT_EQ(describe(*readModel(write(*model, plant))), describe(*model));
    model->add(*system, u"S", BlockKind::System);
    hostError("InvalidDiagram", [&] { write(*model, plant); });
}

TEST_F(SsdWriterTest, DocumentServesAnyNumberOfTimes)
{
    const auto model = readModel(plant);
    model->history().renameBlock(at(*model, u"Pump"), u"P");
    const std::string first = write(*model, plant);
    EXPECT_EQ(write(*model, plant), first);
    model->history().undo();
    EXPECT_EQ(write(*model, plant), plant);
}

}  // namespace reference_host
