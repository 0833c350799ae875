#pragma once

#include <QtGlobal>

#include <chrono>

/// Time this thread has spent computing. Other programs on the machine do not count, which a test
/// of a limit needs.
std::chrono::nanoseconds threadTime();

/// Megabytes by which this process's memory has grown at its largest since resetMemoryPeak();
/// nothing sensible where the system does not tell, see canMeasureMemory().
qint64 memoryGrowth();
void resetMemoryPeak();
bool canMeasureMemory();
