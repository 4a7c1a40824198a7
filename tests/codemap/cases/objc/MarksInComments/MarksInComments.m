// MARK: - Tides
int shown;
