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
    if (recording_) {
        lines_.push_back(line);
    }
}

void GlRecorder::popAttributes()
{
    if (savedModes_.empty()) {
        fault_ += "glPopAttrib on an empty stack; ";
        return;
    }
    mode_ = savedModes_.back(); // saved with everything else
    savedModes_.pop_back();
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
    if (!savedModes_.empty()) {
        text << "attribute stack off by " << savedModes_.size() << "; ";
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
    savedModes_.clear();
    matrixDepth_.clear();
    primitiveOpen_ = false;
}

} // namespace kelvartest
