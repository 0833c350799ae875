#pragma once

#include "ContentView.h"
#include "HistoryStore.h"
#include "ImageIntake.h"
#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"

/// The screen's state and its intake, with a store that lasts as long as the test.
struct Screen
{
    PreferenceStore store{
        std::make_unique<MemoryPreferenceBackend>(std::make_shared<PreferenceMemory>())};
    HistoryStore history{&store};
    ContentView contentView{&store, &history};
    ImageIntake intake{&contentView};
};
