// The test program's own versions of some functions of the platform library, which take the place of the real ones.
#pragma once

namespace fikleipa::tests {

extern unsigned cpuFeatures;  // what CPUFeatureFlags() answers
extern unsigned cpuQuestions; // how often it was asked
extern bool swapThrows;       // whether EndianConvertWord() throws

} // namespace fikleipa::tests
