void ::run() {}
