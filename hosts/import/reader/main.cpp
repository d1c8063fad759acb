// Reads one model file and writes it to the standard output: see ReaderProtocol.

#include "hosts/import/internal/ReaderProtocol.h"
#include "hosts/import/reader/ModelReader.h"
#include "hosts/import/reader/ModelWriter.h"

#include <QFile>

#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <new>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void limit(__rlimit_resource resource, rlim_t soft, rlim_t hard)
{
    const rlimit limits = {soft, hard};
    ::setrlimit(resource, &limits);
}

void keepTo(rlim_t seconds, rlim_t bytes)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);        // it ends with the thread that waits for it
    limit(RLIMIT_CPU, seconds, RLIM_INFINITY); // more is allowed for each file that the model names
    limit(RLIMIT_CORE, 0, 0);
#ifndef __SANITIZE_ADDRESS__
    // The sanitizers take terabytes of addresses.
    if (bytes > 0) {
        limit(RLIMIT_DATA, bytes, bytes);
    }
#endif
    static_cast<void>(bytes);
    std::set_new_handler([] { ::_exit(hostkit::ReaderProtocol::outOfMemory); });
}

/// Of the memory that reading may take, pictures get so much, so that the rest of the model has room.
constexpr std::uint64_t shareOfTextures = 8;

void readAndSend(const char* file, std::uint64_t mostBytes, hostkit::ModelWriter& out)
{
    try {
        hostkit::ModelReader::read(QFile::decodeName(file), mostBytes / shareOfTextures, out);
        out.done();
    } catch (const std::exception& error) {
        out.error(error.what());
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        return EXIT_FAILURE;
    }
    std::setlocale(LC_CTYPE, ""); // what file names are written in; numbers in models know no locale
    const std::uint64_t bytes = std::strtoull(argv[3], nullptr, 10);
    keepTo(std::strtoull(argv[2], nullptr, 10), bytes);
    // What a library prints must not get between the messages.
    const int pipe = ::dup(STDOUT_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    hostkit::ModelWriter out(pipe);
    readAndSend(argv[1], bytes, out);
    ::_exit(EXIT_SUCCESS); // nothing is left to be done by what would run at a usual end
}
