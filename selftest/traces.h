// traces.h: the recorded traces, built in.
#pragma once

namespace selftest {

/// As in tests/golden/traces.tsv.
extern const char* const kRecordedTraces;

}  // namespace selftest
