// The command line as a function.
#pragma once

namespace fikleipa::tool {

// Does what the arguments say; the first is the name of the program. Returns the exit status; an error is told in one
// line on standard error. Keeps nothing, so that it may be called again.
int runCommandLine(int argc, const char* const* argv);

} // namespace fikleipa::tool
