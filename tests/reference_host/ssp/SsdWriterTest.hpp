#ifndef ZM_TESTS_REFERENCE_HOST_SSP_SSD_WRITER_TEST_HPP
#define ZM_TESTS_REFERENCE_HOST_SSP_SSD_WRITER_TEST_HPP

#include "host/Text.hpp"
#include "reference_host/model/EditHistory.hpp"
#include "reference_host/ssp/SsdWriter.hpp"
#include "tests/reference_host/model/DiagramTest.hpp"

#include <libxml/parser.h>
#include <unistd.h>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

namespace reference_host {

/// A plant with a little of everything that SSP provides for.
inline constexpr const char* everything = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- before -->
<SystemStructureDescription xmlns="http://ssp-standard.org/SSP1/SystemStructureDescription"
  xmlns:c="http://ssp-standard.org/SSP1/SystemStructureCommon" version="1.0" name='all of it'>
  <System name="plant" description="&quot;everything&quot;" id="s1">
    <!-- connectors -->
    <Connectors>
      <Connector name="in" kind="input" description="from outside"><c:Real unit="K"/></Connector>
      <Connector name="p" kind="parameter"><c:Enumeration name="mode"/><ConnectorGeometry x="0" y="1"/></Connector>
      <Connector name="out" kind="output"><c:Boolean/></Connector>
    </Connectors>
    <ElementGeometry x1="0" y1="0" x2="10" y2="10"/>
    <ParameterBindings>
      <ParameterBinding source="plant.ssv"><ParameterMapping source="plant.ssm"/></ParameterBinding>
    </ParameterBindings>
    <Elements>
      <!-- first -->
      <Component name='Pumpe &amp; Ventil' source="a.fmu" implementation="CoSimulation"
                 description="two
lines"><Connectors><Connector kind='output' name='q'><c:Real/></Connector
        ><Connector kind='output' name='&#x3B8;'/><Connector kind='input' name='u'/></Connectors>
        <Annotations><c:Annotation type="org.x"><x:y xmlns:x="urn:x" a='b'> text <!-- c --></x:y></c:Annotation></Annotations>
      </Component>
      <System name="Speicher">
        <Elements>
          <Component name="Rohr" source="b.fmu"/>
          <Component name="Sensor" source="c.fmu"><Connectors><Connector name="T" kind="output"/></Connectors></Component>
          <System name="innen"><Elements><System name="tief"><Elements>
            <Component name="Kern" source="d.fmu"><Connectors><Connector name="y" kind="output"/></Connectors></Component>
          </Elements></System></Elements></System>
        </Elements>
        <Connections>
          <Connection startElement="Sensor" startConnector="T" endElement="innen" endConnector="none"/>
        </Connections>
        <SystemGeometry x1="0" y1="0" x2="1" y2="1"/>
      </System>
      <SignalDictionaryReference name="bus" dictionary="d"/>
      <!-- last -->
      <Component name="leer" source=""></Component>
    </Elements>
    <Connections>
      <Connection startConnector="in" endElement="Pumpe &amp; Ventil" endConnector="u"><c:LinearTransformation factor="2"/></Connection>
      <!-- between -->
      <Connection startElement="Pumpe &amp; Ventil" startConnector="q" endElement="bus" endConnector="x" description="to the bus"/>
      <Connection startElement="Pumpe &amp; Ventil" startConnector="&#x3B8;" endConnector="out"/>
      <Connection startElement="Speicher" startConnector="a" endElement="nowhere" endConnector="b"/>
    </Connections>
    <SignalDictionaries><SignalDictionary name="d" source="bus.ssb"/></SignalDictionaries>
    <GraphicalElements><Note x1="0" y1="0" x2="1" y2="1" text="a note"/></GraphicalElements>
    <Annotations><c:Annotation type="t"/></Annotations>
  </System>
  <Enumerations><c:Enumeration name="mode"><c:Item name="on" value="1"/></c:Enumeration></Enumerations>
  <DefaultExperiment startTime="0" stopTime="1"/>
</SystemStructureDescription>
)";

/// Reads descriptions, has their diagrams edited and writes them.
class SsdWriterTest : public DiagramTest {
protected:
    static std::shared_ptr<Model> readModel(const std::string& document)
    {
        std::shared_ptr<Model> model(read(document).model);
        m_blocks[model.get()] = model->blocks();
        return model;
    }

    /// The description of a model that `readModel` has read from a document.
    static std::string write(const Model& model, const std::string& document)
    {
        return writeSsd(model, {document, m_blocks[&model]});
    }

    /// The document after an edit of its diagram.
    template <class Edit>
    static std::string edited(const std::string& document, Edit edit)
    {
        const auto model = readModel(document);
        edit(*model);
        return write(*model, document);
    }

    /// A document in the one form that libxml2 gives to white space in tags, quotes and references.
    static std::string inOneForm(const std::string& document)
    {
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> tree(
            xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr,
                          XML_PARSE_HUGE),
            &xmlFreeDoc);
        xmlChar* text = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(tree.get(), &text, &size, "UTF-8");
        const std::string form(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
        xmlFree(text);
        return form;
    }

    static Block& at(const Model& model, std::u16string_view path) { return *model.findByPath(path); }

    /// Everything that a description says of a diagram, ports in the order of their names.
    static std::string describe(const Model& model)
    {
        std::string text;
        describeBlock(model.root(), text);
        for (const Block* block : model.blocks()) {
            describeBlock(*block, text);
        }
        return text;
    }

    static std::string fileText(const std::filesystem::path& file)
    {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    /// Whether the standard's structure is kept, as xmllint says it.
    static bool isValid(const std::string& document, const char* schema = "ssd.rng")
    {
        const std::filesystem::path file =
            std::filesystem::temp_directory_path() / ("zm_ssd_" + std::to_string(::getpid()) + ".ssd");
        std::ofstream(file, std::ios::binary) << document;
        const std::string command = std::string("'") + ZM_XMLLINT "' --noout --relaxng '" ZM_SCHEMAS "/" +
                                    schema + "' '" + file.string() + "' 2>/dev/null";
        const int result = std::system(command.c_str());  // NOLINT(bugprone-command-processor): our own words
        std::filesystem::remove(file);
        return result == 0;
    }

private:
    inline static std::map<const Model*, std::vector<Block*>> m_blocks;

    static void describeBlock(const Block& block, std::string& text)
    {
        text += toUtf8(block.path()) + (block.kind() == BlockKind::System ? " system" : "") + '\n';
        for (const PortKind kind : {PortKind::Output, PortKind::Input, PortKind::Other}) {
            std::vector<Port> ports = block.ports(kind);
            std::ranges::sort(ports, {}, &Port::name);
            for (const Port& port : ports) {
                text += "  port " + std::to_string(static_cast<int>(kind)) + ' ' + toUtf8(port.name) + '\n';
            }
        }
        for (const Connection& connection : block.connections()) {
            text +=
                "  from " + endText(connection.start, block) + " to " + endText(connection.end, block) + '\n';
        }
    }

    static std::string endText(const ConnectionEnd& end, const Block& system)
    {
        const std::u16string element = end.element == nullptr   ? end.elementName
                                       : end.element == &system ? u""
                                                                : end.element->name();
        return toUtf8(element) + '.' + toUtf8(end.connector);
    }
};

}  // namespace reference_host

#endif
