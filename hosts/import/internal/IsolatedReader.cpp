#include "hosts/import/internal/IsolatedReader.h"

#include "hosts/import/internal/ModelReader.h"

#include <QFileInfo>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <string>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace hostkit {

namespace {

/// What the reading process says through its pipe; the end of the pipe without Done is a crash.
enum class Tag : char
{
    Share,
    Part,
    Error,
    Done
};

constexpr int pollMilliseconds = 20;
constexpr qint64 megabyte = 1000000;

/// The reading process's end of the pipe. Without a reader on the other side the process ends.
class Writer
{
public:
    explicit Writer(int pipe)
        : pipe_(pipe)
    {}

    void bytes(const void* data, std::size_t size) const
    {
        const char* at = static_cast<const char*>(data);
        while (size > 0) {
            const ssize_t written = ::write(pipe_, at, size);
            if (written < 0 && errno != EINTR) {
                ::_exit(1);
            }
            at += written > 0 ? written : 0;
            size -= static_cast<std::size_t>(written > 0 ? written : 0);
        }
    }

    template <typename T>
    void value(const T& value) const
    {
        bytes(&value, sizeof(value));
    }

    template <typename Array>
    void array(const Array& array) const
    {
        value(static_cast<uint64_t>(array.size()));
        bytes(array.data(), array.size() * sizeof(*array.data()));
    }

private:
    int pipe_;
};

/// The own end of the pipe and the process on the other one, which goes with this object.
class Reader
{
public:
    Reader(int pipe, pid_t process, const Progress& progress)
        : pipe_(pipe)
        , process_(process)
        , progress_(progress)
    {}

    ~Reader()
    {
        ::close(pipe_);
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
    }

    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    void bytes(void* data, std::size_t size)
    {
        char* at = static_cast<char*>(data);
        while (size > 0) {
            if (progress_.cancelled()) {
                throw Progress::Cancelled();
            }
            pollfd ready = {pipe_, POLLIN, 0};
            if (::poll(&ready, 1, pollMilliseconds) <= 0) {
                continue;
            }
            const ssize_t got = ::read(pipe_, at, size);
            if (got == 0) {
                throw std::runtime_error(verdict());
            }
            at += got > 0 ? got : 0;
            size -= static_cast<std::size_t>(got > 0 ? got : 0);
        }
    }

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
        Array result;
        result.resize(static_cast<std::size_t>(value<uint64_t>()));
        bytes(result.data(), result.size() * sizeof(*result.data()));
        return result;
    }

private:
    /// Why the process ended without a word.
    std::string verdict()
    {
        int status = 0;
        ::waitpid(process_, &status, 0);
        process_ = -1;
        const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        return signal == SIGXCPU   ? "damaged: reading it does not come to an end"
               : signal == SIGKILL ? "reading it takes more memory than there is"
                                   : "damaged: it takes its reader down";
    }

    int pipe_;
    pid_t process_;
    const Progress& progress_;
};

void sendPart(const Writer& out, const MeshSource& part)
{
    out.value(Tag::Part);
    out.array(part.name.toStdString());
    out.value(part.colour.rgb());
    out.array(part.positions);
    out.array(part.normals);
    out.array(part.colours);
    out.array(part.indices);
}

MeshSource receivePart(Reader& in)
{
    MeshSource part;
    part.name = QString::fromStdString(in.array<std::string>());
    part.colour = QColor::fromRgb(in.value<QRgb>());
    part.positions = in.array<std::vector<Kelvar::Math::Vector3>>();
    part.normals = in.array<std::vector<Kelvar::Math::Vector3>>();
    part.colours = in.array<std::vector<uint32_t>>();
    part.indices = in.array<std::vector<uint32_t>>();
    return part;
}

/// The life of the reading process. It dies with the thread that waits for it.
[[noreturn]] void readAndSend(const QString& file, const Writer& out)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const int signal : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGXCPU, SIGPIPE}) {
        ::signal(signal, SIG_DFL);
    }
    const rlim_t seconds =
        static_cast<rlim_t>(IsolatedReader::secondsAllowed + QFileInfo(file).size() / megabyte);
    const rlimit processor = {seconds, seconds + 1};
    ::setrlimit(RLIMIT_CPU, &processor);
    const rlimit noCore = {0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    try {
        const auto report = [&](float share) {
            out.value(Tag::Share);
            out.value(share);
        };
        ModelReader::read(file, report, [&](const MeshSource& part) { sendPart(out, part); });
        out.value(Tag::Done);
    } catch (const std::exception& error) {
        out.value(Tag::Error);
        out.array(std::string(error.what()));
    }
    ::_exit(0);
}

std::vector<MeshSource> receive(Reader& in, const ReportShare& report)
{
    std::vector<MeshSource> parts;
    for (;;) {
        switch (in.value<Tag>()) {
        case Tag::Share:
            report(in.value<float>());
            break;
        case Tag::Part:
            parts.push_back(receivePart(in));
            break;
        case Tag::Error:
            throw std::runtime_error(in.array<std::string>());
        case Tag::Done:
            return parts;
        }
    }
}

} // namespace

std::vector<MeshSource> IsolatedReader::read(const QString& file, const Progress& progress,
                                             const ReportShare& report)
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        throw std::runtime_error(std::strerror(errno));
    }
    const pid_t process = ::fork();
    if (process == 0) {
        ::close(ends[0]);
        readAndSend(file, Writer(ends[1]));
    }
    const int reason = errno;
    ::close(ends[1]);
    if (process < 0) {
        ::close(ends[0]);
        throw std::runtime_error(std::strerror(reason));
    }
    Reader in(ends[0], process, progress);
    return receive(in, report);
}

} // namespace hostkit
