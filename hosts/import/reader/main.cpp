// Reads one model file and writes its parts to the standard output: see ReaderProtocol.

#include "hosts/import/internal/ReaderProtocol.h"
#include "hosts/import/reader/ModelReader.h"
#include "hosts/import/reader/PartWriter.h"
#include "hosts/mesh/MeshSource.h"

#include <QFile>

#include <clocale>
#include <csignal>
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
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // it ends with the thread that waits for it
    limit(RLIMIT_CPU, seconds, seconds + 1);
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

void readAndSend(const char* file, const hostkit::PartWriter& out)
{
    try {
        hostkit::ModelReader::read(
            QFile::decodeName(file), [&](float share) { out.share(share); },
            [&](const hostkit::MeshSource& part) { out.part(part); });
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
    keepTo(std::strtoull(argv[2], nullptr, 10), std::strtoull(argv[3], nullptr, 10));
    // What a library prints must not get between the messages.
    const int pipe = ::dup(STDOUT_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    readAndSend(argv[1], hostkit::PartWriter(pipe));
    ::_exit(EXIT_SUCCESS); // taking the model apart again would be for nobody
}
