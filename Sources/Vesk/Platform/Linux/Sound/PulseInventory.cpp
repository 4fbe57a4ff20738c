#include "Platform/Linux/Sound/PulseInventory.h"

#include <algorithm>
#include <string_view>

namespace vesk {

namespace {

std::string_view property(const pa_source_info &source, const char *key)
{
    const char *value = pa_proplist_gets(source.proplist, key);
    return value == nullptr ? std::string_view() : value;
}

bool isMonitor(const pa_source_info &source)
{
    return source.monitor_of_sink != PA_INVALID_INDEX || property(source, PA_PROP_DEVICE_CLASS) == "monitor";
}

AudioTransport transport(const pa_source_info &source)
{
    const std::string_view bus = property(source, PA_PROP_DEVICE_BUS);
    if (bus == "bluetooth" || property(source, PA_PROP_DEVICE_API).starts_with("bluez")) {
        // "bap" is the audio profile of Bluetooth Low Energy.
        return property(source, "api.bluez5.profile").starts_with("bap") ? AudioTransport::bluetoothLowEnergy
                                                                         : AudioTransport::bluetooth;
    }
    // What sits on the board says "internal"; where nobody knows the form, as with many sound chips, the bus
    // tells it from what is plugged in.
    const std::string_view form = property(source, PA_PROP_DEVICE_FORM_FACTOR);
    const bool isOnBoard = bus == "pci" || bus == "isa" || bus == "platform";
    return form == "internal" || (form.empty() && isOnBoard) ? AudioTransport::builtIn
                                                             : AudioTransport::other;
}

} // namespace

void PulseInventory::add(const pa_source_info &source)
{
    // PipeWire announces a source before its format is settled; it says so again afterwards.
    const bool isComplete = pa_sample_spec_valid(&source.sample_spec) != 0
        && pa_channel_map_compatible(&source.channel_map, &source.sample_spec) != 0;
    if (source.name == nullptr || isMonitor(source) || !isComplete) {
        return;
    }
    const char *description = source.description != nullptr ? source.description : source.name;
    microphones.push_back({source.index, source.name, QString::fromUtf8(description), transport(source),
                           source.sample_spec, source.channel_map});
}

const PulseMicrophone *PulseInventory::find(AudioDeviceID device) const
{
    const auto found = std::find_if(microphones.begin(), microphones.end(),
                                    [device](const auto &each) { return each.device() == device; });
    return found == microphones.end() ? nullptr : &*found;
}

const PulseMicrophone *PulseInventory::find(const std::string &name) const
{
    const auto found = std::find_if(microphones.begin(), microphones.end(),
                                    [&name](const auto &each) { return each.name == name; });
    return found == microphones.end() ? nullptr : &*found;
}

const PulseMicrophone *PulseInventory::standard() const
{
    const PulseMicrophone *chosen = find(defaultSource);
    return chosen == nullptr && !microphones.empty() ? &microphones.front() : chosen;
}

} // namespace vesk
