// The processor level, which hosts can read and set. It never changes a result.
#pragma once

namespace fikleipa {

// Makes sure that gdwProcType holds a level. Every converter that has always looked at the level calls this first.
void probeProcessorLevel();

} // namespace fikleipa
