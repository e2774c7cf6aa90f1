#pragma once

namespace krTools
{

/// What a program tells its caller.
enum ExitStatus : int
{
    kDone = 0,
    kInputHasErrors = 1,
    kCannotRun = 2, ///< wrong use, or a file that cannot be read or written
};

} // namespace krTools
