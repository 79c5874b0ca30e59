# From the functions that nm prints, demangled, to a line of C++ for each: its name, those of C++ with their parameters.
# Left out are those about the processor and the build.
/^(cycbcr_[gs]et_cpu|fikleipa_kernel|fikleipa_version) /d
s/^([A-Za-z0-9_]+) T .*/EXPORT_C(\1)/p
s/^([A-Za-z0-9_]+)\((.*)\) T .*/EXPORT_CXX(\1, \2)/p
