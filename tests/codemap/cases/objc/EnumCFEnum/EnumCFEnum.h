typedef CF_ENUM(CFIndex, TideMode) { kTideModeA };
CF_ENUM(int) { kLoose };
