#include "hmi_foundation/bindings/InstrumentedSignalsCOSClassInfo.hpp"

#include "hmi/InstrumentedSignals.hpp"
#include "hmi_foundation/bindings/TypedMethod.hpp"

#include <boost/make_shared.hpp>

// One class a method: its row of the method table and its body. A body that takes an index checks it before
// it makes a record from another input.

namespace zm_hmi_foundation {

namespace {

using zm_hmi::InstrumentedSignals;
using zm_hmi::SignalSpecification;

zm_hmi::SignalSpecificationPtr makeSignal(const InstrumentedSignals& signals, const nvArray* signal)
{
    return boost::make_shared<SignalSpecification>(signal, 0, signals.getModelName());
}

class InstrumentedSignalsConstructor final : public TypedMethod<InstrumentedSignalsConstructor> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "InstrumentedSignals");
    static void body(NewObject<InstrumentedSignals> made, std::optional<std::u16string> modelName)
    {
        if (modelName) {
            made.collection().setModelName(*modelName);
        }
    }
};

class InstrumentedSignalsAdd final : public TypedMethod<InstrumentedSignalsAdd> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "add");
    static void body(InstrumentedSignals& signals, const nvArray* signal)
    {
        signals.add(makeSignal(signals, signal));
    }
};

class InstrumentedSignalsSet final : public TypedMethod<InstrumentedSignalsSet> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "set");
    static void body(InstrumentedSignals& signals, std::uint32_t index, const nvArray* signal)
    {
        const std::size_t place = indexInto(signals, index);
        signals.set(place, makeSignal(signals, signal));
    }
};

class InstrumentedSignalsRemove final : public TypedMethod<InstrumentedSignalsRemove> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "remove");
    static void body(InstrumentedSignals& signals, std::uint32_t index)
    {
        signals.remove(indexInto(signals, index));
    }
};

class InstrumentedSignalsGet final : public TypedMethod<InstrumentedSignalsGet> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "get");
    static OwnedArray body(InstrumentedSignals& signals, std::uint32_t index, std::optional<bool> asStruct)
    {
        const std::size_t place = indexInto(signals, index);
        // Held and copied: host code that runs inside the conversion may remove the element or the
        // collection.
        const zm_hmi::SignalSpecificationPtr signal = signals.get(place);
        const std::u16string modelName = signals.getModelName();
        return signal->getNVCOSObject(modelName, asStruct.value_or(false));
    }
};

class InstrumentedSignalsIsPortObserved final : public TypedMethod<InstrumentedSignalsIsPortObserved> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "isPortObserved");
    static bool body(InstrumentedSignals& signals, const nvArray* signal)
    {
        return signals.isPortObserved(makeSignal(signals, signal).get());
    }
};

class InstrumentedSignalsIsKWActivityObserved final
    : public TypedMethod<InstrumentedSignalsIsKWActivityObserved> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "isGivenKWActivityObserved");
    static bool body(InstrumentedSignals& signals, const std::u16string& blockPath, double kzid,
                     const std::u16string& activity)
    {
        return signals.isKWActivityObserved(blockPath, kzid, activity);
    }
};

class InstrumentedSignalsIsAnyKWActivityObserved final
    : public TypedMethod<InstrumentedSignalsIsAnyKWActivityObserved> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "isAnyKWActivityObserved");
    static bool body(InstrumentedSignals& signals, const std::u16string& blockPath, double kzid)
    {
        return signals.isAnyKWActivityObserved(blockPath, kzid);
    }
};

class InstrumentedSignalsIsBlockAndPortObserved final
    : public TypedMethod<InstrumentedSignalsIsBlockAndPortObserved> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "isGivenPortObserved");
    static bool body(InstrumentedSignals& signals, double blockHandle, std::int32_t port)
    {
        return std::as_const(signals).isPortObserved(blockHandle, port);
    }
};

// The two UUID methods take no object: they act on the process-wide map of block ports. Scripts pass the
// handle before the port, the map takes the port before the handle.

class InstrumentedSignalAddToPortUUIDmap final : public TypedMethod<InstrumentedSignalAddToPortUUIDmap> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "setUUIDForBlock");
    static void body(double blockHandle, std::uint32_t port, const std::string& uuid)
    {
        SignalSpecification::addToBlockHandleUUIDmap(static_cast<int>(port), blockHandle, uuid);
    }
};

class InstrumentedSignalGetUUIDForBlock final : public TypedMethod<InstrumentedSignalGetUUIDForBlock> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "getUUIDForBlock");
    static UncountedResult body(double blockHandle, std::uint32_t port, bool useMap)
    {
        return {makeString(
            SignalSpecification::getUUIDFromBlockHandle(static_cast<int>(port), blockHandle, useMap))};
    }
};

class InstrumentedSignalsGetUUID final : public TypedMethod<InstrumentedSignalsGetUUID> {
public:
    static constexpr const MethodRow& row = rowOf(signalsMethods, "getUUID");
    static OwnedArray body(InstrumentedSignals& signals, std::uint32_t index)
    {
        return makeString(signals.get(indexInto(signals, index))->getUUID());
    }
};

}  // namespace

void addInstrumentedSignalsMethods(nvcos::COSClass* cosClass)
{
    addMethods<signalsMethods, InstrumentedSignalsConstructor, InstrumentedSignalsAdd, InstrumentedSignalsSet,
               InstrumentedSignalsRemove, InstrumentedSignalsGet, InstrumentedSignalsIsPortObserved,
               InstrumentedSignalsIsKWActivityObserved, InstrumentedSignalsIsAnyKWActivityObserved,
               InstrumentedSignalsIsBlockAndPortObserved, InstrumentedSignalAddToPortUUIDmap,
               InstrumentedSignalGetUUIDForBlock, InstrumentedSignalsGetUUID>(cosClass);
}

}  // namespace zm_hmi_foundation
