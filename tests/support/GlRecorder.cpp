#include "tests/support/GlRecorder.h"

#include <sstream>

namespace kelvartest {

GlRecorder& GlRecorder::instance()
{
    static GlRecorder recorder;
    return recorder;
}

void GlRecorder::start()
{
    lines_.clear();
    recording_ = true;
}

std::vector<std::string> GlRecorder::stop()
{
    recording_ = false;
    return std::move(lines_);
}

void GlRecorder::note(const std::string& line)
{
    call(line);
}

void GlRecorder::call(const std::string& line)
{
    if (recording_) {
        lines_.push_back(line);
    }
}

void GlRecorder::pushAttributes(int step, unsigned savedMode)
{
    attributeDepth_ += step;
    if (step > 0) {
        savedModes_.push_back(savedMode);
    } else if (savedModes_.empty()) {
        fault_ += "glPopAttrib on an empty stack; ";
    } else {
        // The attribute stack saves the matrix mode with everything else.
        mode_ = savedModes_.back();
        savedModes_.pop_back();
    }
}

void GlRecorder::primitive(bool open)
{
    if (open == primitiveOpen_) {
        fault_ += open ? "glBegin inside glBegin; " : "glEnd without glBegin; ";
    }
    primitiveOpen_ = open;
}

std::string GlRecorder::imbalance() const
{
    std::ostringstream text;
    text << fault_;
    if (attributeDepth_ != 0) {
        text << "attribute stack off by " << attributeDepth_ << "; ";
    }
    for (const auto& depth : matrixDepth_) {
        if (depth.second != 0) {
            text << glName(depth.first) << " stack off by " << depth.second << "; ";
        }
    }
    if (primitiveOpen_) {
        text << "glBegin left open; ";
    }
    return text.str();
}

void GlRecorder::resetBalance()
{
    fault_.clear();
    attributeDepth_ = 0;
    savedModes_.clear();
    matrixDepth_.clear();
    primitiveOpen_ = false;
}

int GlRecorder::live(const std::string& kind) const
{
    const auto found = live_.find(kind);
    return found == live_.end() ? 0 : found->second;
}

int GlRecorder::liveObjects() const
{
    int sum = 0;
    for (const auto& kind : live_) {
        sum += kind.second;
    }
    return sum;
}

const std::vector<std::string>& GlRecording::finish()
{
    if (!finished_) {
        finished_ = true;
        lines_ = GlRecorder::instance().stop();
    }
    return lines_;
}

} // namespace kelvartest
