int run() try { return 1; } catch (const Error &) { return 2; } catch (...) { return 3; }
int after;
