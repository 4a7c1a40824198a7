Tide::Tide() try : a(1) { run(); } catch (...) { stop(); }
int after;
