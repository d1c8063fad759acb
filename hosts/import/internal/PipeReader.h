#pragma once

#include "hosts/import/internal/IsolatedReader.h"
#include "hosts/mesh/Progress.h"

#include <QString>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace hostkit {

class ReaderProcess;

/// What a running model_reader says, number by number, as long as it keeps to its limits. All operations
/// throw std::runtime_error with the reason when it does not, and Progress::Cancelled.
class PipeReader
{
public:
    /// All are borrowed. The clock on the wall runs from now on.
    PipeReader(ReaderProcess& process, const IsolatedReader::Limits& limits, const Progress& progress);

    template <typename T>
    T value()
    {
        T result{};
        bytes(&result, sizeof(result));
        return result;
    }

    template <typename Array>
    Array array()
    {
        const auto count = value<std::uint64_t>();
        expect(count, sizeof(*Array().data()));
        Array result;
        result.resize(static_cast<std::size_t>(count));
        bytes(result.data(), result.size() * sizeof(*result.data()));
        return result;
    }

    QString text() { return QString::fromStdString(array<std::string>()); }

    /// Refuses to wait for more than may come: to be asked ahead of making room for what a reader gone mad
    /// may announce.
    void expect(std::uint64_t count, std::size_t elementSize) const;

    void bytes(void* data, std::size_t size);

    /// Ends the talk: what was said makes no sense.
    [[noreturn]] static void failAsConfused();

private:
    std::size_t read(void* data, std::size_t size);
    void await() const;
    QString verdict();
    [[noreturn]] void failAsTooLarge() const;

    ReaderProcess& process_;
    const IsolatedReader::Limits& limits_;
    const Progress& progress_;
    std::uint64_t bytesLeft_;
    std::chrono::steady_clock::time_point end_;
    /// What was read ahead lies between next_ and filled_.
    std::array<char, 65536> ahead_;
    std::size_t next_ = 0;
    std::size_t filled_ = 0;
};

} // namespace hostkit
