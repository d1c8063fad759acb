#pragma once

#include "hosts/import/internal/ModelSource.h"
#include "hosts/import/kelvar_import_api.h"
#include "hosts/mesh/Progress.h"

#include <QString>

#include <cstdint>

namespace hostkit {

/// Reads a model file by the program model_reader, so that a damaged file that takes its reader down, or
/// keeps it busy for ever, is an error like any other, and so that reading can be stopped at any moment.
class KELVAR_IMPORT_API IsolatedReader
{
public:
    /// What reading may take. Who wants more gets an error that tells the limit.
    struct Limits
    {
        /// Seconds of processor time, and by the clock on the wall.
        int processorSeconds;
        int wallSeconds;

        /// Bytes of memory for the program; 0: as many as it likes.
        std::uint64_t readerBytes;

        /// Bytes of all that it sends.
        std::uint64_t modelBytes;
    };

    /// Three seconds of processor time, thirty by the clock, and one more of each for each megabyte of the
    /// file; half of the memory that the machine has available, or that this process may use if that is less,
    /// and an eighth of it for the model.
    static Limits limitsFor(const QString& file);

    /// The model_reader that comes with this library.
    static QString ownReader();

    /// `program` is a file that talks as ReaderProtocol tells.
    explicit IsolatedReader(const Limits& limits, const QString& program = ownReader());

    /// The model as ModelReader gives it. Throws std::runtime_error with the reason, and
    /// Progress::Cancelled at once when `progress` was cancelled; `report` is told how far it is.
    ModelSource read(const QString& file, const Progress& progress, const ReportShare& report) const;

private:
    Limits limits_;
    QString program_;
};

} // namespace hostkit
