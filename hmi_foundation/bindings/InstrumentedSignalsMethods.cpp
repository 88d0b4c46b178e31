#include "hmi_foundation/bindings/InstrumentedSignalsCOSClassInfo.hpp"

#include "hmi/InstrumentedSignals.hpp"
#include "hmi_foundation/bindings/CollectionBinding.hpp"

#include <boost/make_shared.hpp>

// One class a method: its row of the method table, and its body. Where a body takes an index, the index
// is checked before anything is built from the other inputs.

namespace zm_hmi_foundation {

namespace {

using nvcos::COSClient;
using nvcos::COSValue;
using zm_hmi::InstrumentedSignals;
using zm_hmi::SignalSpecification;

constexpr const char* signalsType = "Zelmar.HMI.InstrumentedSignals";
constexpr const char* signalType = "Zelmar.HMI.SignalSpecification";

InstrumentedSignals& signalsOf(const COSValue& object)
{
    return collectionOf<InstrumentedSignals>(object);
}

zm_hmi::SignalSpecificationPtr makeSignal(const InstrumentedSignals& signals, const COSValue& signal)
{
    return boost::make_shared<SignalSpecification>(std::get<nvArray*>(signal), 0, signals.getModelName());
}

class InstrumentedSignalsConstructor : public HMICOSMethodInfo {
public:
    InstrumentedSignalsConstructor()
        : HMICOSMethodInfo({"InstrumentedSignals", {type_name::unicodeString}, {signalsType}, 1})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int inputCount,
                const COSValue* inputs) const override
    {
        // The new object is the output already.
        if (inputCount > 0) {
            signalsOf(outputs[0]).setModelName(std::get<std::u16string>(inputs[0]));
        }
        outputCount = 1;
    }
};

class InstrumentedSignalsAdd : public HMICOSMethodInfo {
public:
    InstrumentedSignalsAdd() : HMICOSMethodInfo({"add", {signalsType, signalType}, {}}) {}
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* /*outputs*/, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        InstrumentedSignals& signals = signalsOf(inputs[0]);
        signals.add(makeSignal(signals, inputs[1]));
    }
};

class InstrumentedSignalsSet : public HMICOSMethodInfo {
public:
    InstrumentedSignalsSet()
        : HMICOSMethodInfo({"set", {signalsType, type_name::uint32Scalar, signalType}, {}})
    {
    }
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* /*outputs*/, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        InstrumentedSignals& signals = signalsOf(inputs[0]);
        const std::size_t index = indexInto(signals, inputs[1]);
        signals.set(index, makeSignal(signals, inputs[2]));
    }
};

class InstrumentedSignalsRemove : public HMICOSMethodInfo {
public:
    InstrumentedSignalsRemove() : HMICOSMethodInfo({"remove", {signalsType, type_name::uint32Scalar}, {}}) {}
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* /*outputs*/, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        InstrumentedSignals& signals = signalsOf(inputs[0]);
        signals.remove(indexInto(signals, inputs[1]));
    }
};

class InstrumentedSignalsGet : public HMICOSMethodInfo {
public:
    InstrumentedSignalsGet()
        : HMICOSMethodInfo(
              {"get", {signalsType, type_name::uint32Scalar, type_name::logicalScalar}, {type_name::any}, 1})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int inputCount,
                const COSValue* inputs) const override
    {
        const InstrumentedSignals& signals = signalsOf(inputs[0]);
        const std::size_t index = indexInto(signals, inputs[1]);
        const bool asStruct = inputCount == 3 && std::get<bool>(inputs[2]);
        // Host code runs inside the conversion and may remove the element or end the collection.
        const zm_hmi::SignalSpecificationPtr signal = signals.get(index);
        const std::u16string modelName = signals.getModelName();
        setResult(outputs[0], signal->getNVCOSObject(modelName, asStruct));
        outputCount = 1;
    }
};

class InstrumentedSignalsIsPortObserved : public HMICOSMethodInfo {
public:
    InstrumentedSignalsIsPortObserved()
        : HMICOSMethodInfo({"isPortObserved", {signalsType, signalType}, {type_name::logicalScalar}})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        InstrumentedSignals& signals = signalsOf(inputs[0]);
        outputs[0] = signals.isPortObserved(makeSignal(signals, inputs[1]).get());
        outputCount = 1;
    }
};

class InstrumentedSignalsIsKWActivityObserved : public HMICOSMethodInfo {
public:
    InstrumentedSignalsIsKWActivityObserved()
        : HMICOSMethodInfo(
              {"isGivenKWActivityObserved",
               {signalsType, type_name::unicodeString, type_name::doubleScalar, type_name::unicodeString},
               {type_name::logicalScalar}})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        outputs[0] = signalsOf(inputs[0]).isKWActivityObserved(std::get<std::u16string>(inputs[1]),
                                                               std::get<double>(inputs[2]),
                                                               std::get<std::u16string>(inputs[3]));
        outputCount = 1;
    }
};

class InstrumentedSignalsIsAnyKWActivityObserved : public HMICOSMethodInfo {
public:
    InstrumentedSignalsIsAnyKWActivityObserved()
        : HMICOSMethodInfo({"isAnyKWActivityObserved",
                            {signalsType, type_name::unicodeString, type_name::doubleScalar},
                            {type_name::logicalScalar}})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        outputs[0] = signalsOf(inputs[0]).isAnyKWActivityObserved(std::get<std::u16string>(inputs[1]),
                                                                  std::get<double>(inputs[2]));
        outputCount = 1;
    }
};

class InstrumentedSignalsIsBlockAndPortObserved : public HMICOSMethodInfo {
public:
    InstrumentedSignalsIsBlockAndPortObserved()
        // A signed port here, an unsigned one for the UUID methods: scripts rely on both as they are.
        : HMICOSMethodInfo({"isGivenPortObserved",
                            {signalsType, type_name::doubleScalar, type_name::int32Scalar},
                            {type_name::logicalScalar}})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        const InstrumentedSignals& signals = signalsOf(inputs[0]);
        outputs[0] = signals.isPortObserved(std::get<double>(inputs[1]), std::get<std::int32_t>(inputs[2]));
        outputCount = 1;
    }
};

// The two UUID methods take no object: they act on the process's block-port map. Scripts pass handle,
// then port; the map is asked with port, then handle.

class InstrumentedSignalAddToPortUUIDmap : public HMICOSMethodInfo {
public:
    InstrumentedSignalAddToPortUUIDmap()
        : HMICOSMethodInfo({"setUUIDForBlock",
                            {type_name::doubleScalar, type_name::uint32Scalar, type_name::asciiString},
                            {}})
    {
    }
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* /*outputs*/, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        const std::string uuid = std::get<std::string>(inputs[2]);
        SignalSpecification::addToBlockHandleUUIDmap(static_cast<int>(std::get<std::uint32_t>(inputs[1])),
                                                     std::get<double>(inputs[0]), uuid);
    }
};

class InstrumentedSignalGetUUIDForBlock : public HMICOSMethodInfo {
public:
    InstrumentedSignalGetUUIDForBlock()
        : HMICOSMethodInfo({"getUUIDForBlock",
                            {type_name::doubleScalar, type_name::uint32Scalar, type_name::logicalScalar},
                            {type_name::any}})
    {
    }
    // Leaves the output count as the host passed it in, alone among the methods with a result.
    void invoke(const COSClient* /*client*/, int& /*outputCount*/, COSValue* outputs, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        const std::string uuid = SignalSpecification::getUUIDFromBlockHandle(
            static_cast<int>(std::get<std::uint32_t>(inputs[1])), std::get<double>(inputs[0]),
            std::get<bool>(inputs[2]));
        setResult(outputs[0], makeString(uuid));
    }
};

class InstrumentedSignalsGetUUID : public HMICOSMethodInfo {
public:
    InstrumentedSignalsGetUUID()
        : HMICOSMethodInfo({"getUUID", {signalsType, type_name::uint32Scalar}, {type_name::any}})
    {
    }
    void invoke(const COSClient* /*client*/, int& outputCount, COSValue* outputs, int /*inputCount*/,
                const COSValue* inputs) const override
    {
        const InstrumentedSignals& signals = signalsOf(inputs[0]);
        const std::size_t index = indexInto(signals, inputs[1]);
        setResult(outputs[0], makeString(signals.get(index)->getUUID()));
        outputCount = 1;
    }
};

}  // namespace

void addInstrumentedSignalsMethods(nvcos::COSClass* cosClass)
{
    addMethod<InstrumentedSignalsConstructor>(cosClass);
    addMethod<InstrumentedSignalsAdd>(cosClass);
    addMethod<InstrumentedSignalsSet>(cosClass);
    addMethod<InstrumentedSignalsRemove>(cosClass);
    addMethod<InstrumentedSignalsGet>(cosClass);
    addMethod<InstrumentedSignalsIsPortObserved>(cosClass);
    addMethod<InstrumentedSignalsIsKWActivityObserved>(cosClass);
    addMethod<InstrumentedSignalsIsAnyKWActivityObserved>(cosClass);
    addMethod<InstrumentedSignalsIsBlockAndPortObserved>(cosClass);
    addMethod<InstrumentedSignalAddToPortUUIDmap>(cosClass);
    addMethod<InstrumentedSignalGetUUIDForBlock>(cosClass);
    addMethod<InstrumentedSignalsGetUUID>(cosClass);
}

}  // namespace zm_hmi_foundation
