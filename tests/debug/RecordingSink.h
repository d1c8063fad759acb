#pragma once

#include "contracts/debug/sink.h"

#include <string>
#include <vector>

/// Keeps the lines that it gets, "E " or "T " in front for the channel.
class RecordingSink : public kelvardebug::sink
{
public:
    void line(kelvardebug::channel about, const std::string& text) override
    {
        lines.push_back((about == kelvardebug::channel::error ? "E " : "T ") + text);
    }

    std::vector<std::string> lines;
};

/// Fails at every line.
class ThrowingSink : public kelvardebug::sink
{
public:
    void line(kelvardebug::channel, const std::string&) override
    {
        ++calls;
        throw std::string("no line today");
    }

    int calls = 0;
};
