void run() {
    const char *a = R"(} ")" "{";
    auto b = LR"--(}})--";
}
int after;
