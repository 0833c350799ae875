#pragma once

#include <QtGlobal>

#include <chrono>

/// Processor time of this thread, which does not depend on other programs on the machine.
std::chrono::nanoseconds threadTime();

/// Megabytes by which this process's memory has grown at its largest since resetMemoryPeak();
/// meaningless unless canMeasureMemory().
qint64 memoryGrowth();
void resetMemoryPeak();
bool canMeasureMemory();
