#include "reference_host/ssp/ValueJson.hpp"
#include "tests/reference_host/ssp/ModelFileTest.hpp"

namespace reference_host {

namespace {

/// A small model with all that an archive can hold, saved; then its file is damaged.
class DamagedModelFileTest : public ModelFileTest {
protected:
    void SetUp() override
    {
        ModelFileTest::SetUp();
        addSignal(m_gain, 2, "signal");
        addClient(&m_gauge, "client", "signal");
        setObservers();
        m_gain.addChart(u"Mode").addState(u"Day");
        saveModel(*m_model, m_file);
        OpenModels::close(u"plant");
        m_sound = bytesOf(m_file);
        m_asItWas = describeAll(*openModel(m_file));
        OpenModels::close(u"plant");
    }

    static std::string describeAll(const Model& model)
    {
        std::string all = describeModel(model);
        const OwnedValue observers = model.observers();
        for (const char* collection : {"Signals", "Clients"}) {
            all += valueToJson(property(property(observers, collection), "Persistence").get()) + "\n";
        }
        return all;
    }

    /// The damaged file opens as what it was, or is refused by name and nothing is open.
    void expectSoundOrRefused(const std::string& bytes, const std::string& damage) const
    {
        const auto file = write("damaged.ssp", bytes);
        try {
            EXPECT_EQ(describeAll(*openModel(file)), m_asItWas) << damage;
            ++m_opened;
            OpenModels::closeAll();
        } catch (const zmsvException& refusal) {
            EXPECT_TRUE(std::string(refusal.what()).starts_with(file.string() + ": "))
                << damage << ": " << refusal.what();
            ++m_refused;
        }
        EXPECT_TRUE(OpenModels::all().empty()) << damage;
        EXPECT_TRUE(Warnings::take().empty()) << damage;
    }

    std::string m_sound;
    std::string m_asItWas;
    mutable std::size_t m_opened = 0;
    mutable std::size_t m_refused = 0;
};

TEST_F(DamagedModelFileTest, EveryByteFlipped)
{
    for (const char mask : {'\x01', '\x80', '\xff'}) {
        for (std::size_t i = 0; i < m_sound.size(); ++i) {
            std::string damaged = m_sound;
            damaged[i] = static_cast<char>(damaged[i] ^ mask);
            expectSoundOrRefused(damaged, "byte " + std::to_string(i));
        }
    }
    EXPECT_GT(m_refused, m_sound.size());
}

TEST_F(DamagedModelFileTest, EveryLengthButTheWhole)
{
    for (std::size_t length = 0; length < m_sound.size(); ++length) {
        expectSoundOrRefused(m_sound.substr(0, length), "length " + std::to_string(length));
    }
    EXPECT_EQ(m_opened, 0U);
}

TEST_F(DamagedModelFileTest, EveryByteOfEveryEntryFlipped)
{
    const Archive sound(m_sound);
    for (const std::string& name : sound.names()) {
        const std::string content = sound.read(name);
        for (std::size_t i = 0; i < content.size(); ++i) {
            std::string damaged = content;
            damaged[i] = static_cast<char>(damaged[i] ^ '\x15');
            const auto file = write("damaged.ssp", Archive::pack(&sound, {{name, damaged}}));
            try {
                openModel(file);
                OpenModels::closeAll();
            } catch (const zmsvException& refusal) {
                EXPECT_TRUE(std::string(refusal.what()).starts_with(file.string() + ": ")) << refusal.what();
                EXPECT_TRUE(OpenModels::all().empty()) << name << " " << i;
                ++m_refused;
            }
            Warnings::clear();  // about what a changed name no longer fits
        }
    }
    EXPECT_GT(m_refused, 0U);
}

}  // namespace

}  // namespace reference_host
