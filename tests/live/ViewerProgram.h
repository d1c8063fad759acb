#pragma once

#include <QString>

namespace kelvartest {

/// The program under test, as built beside the tests.
inline QString viewerProgram()
{
    return QStringLiteral(KELVAR_VIEWER);
}

} // namespace kelvartest
