// The text of a recording: refused with a reason, or its own text gives the same events again.

#include "hosts/host/Recording.h"
#include "fuzz/FuzzCheck.h"

#include <algorithm>
#include <cstdint>

using namespace hostkit;

namespace {

bool same(const InputEvent& a, const InputEvent& b)
{
    return a.kind == b.kind && a.button == b.button && a.modifiers == b.modifiers && a.pixel == b.pixel &&
           a.amount == b.amount;
}

void checkRoundTrip(const Recording& recording)
{
    const auto events = recording.events(recording.size);
    QByteArray text = recording.head();
    for (const InputEvent& event : events) {
        text += Recording::line(event, recording.size);
    }
    const Recording again = Recording::parse(text, "again");
    const auto eventsAgain = again.events(again.size);
    kelvarfuzz::require(
        std::equal(events.begin(), events.end(), eventsAgain.begin(), eventsAgain.end(), same),
        "the events are the same");
    kelvarfuzz::require(again.head() == recording.head(), "the heads are the same");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Recording recording;
    try {
        recording =
            Recording::parse(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)), "fuzz");
    } catch (const Recording::Error&) {
        return 0;
    }
    checkRoundTrip(recording);
    return 0;
}
