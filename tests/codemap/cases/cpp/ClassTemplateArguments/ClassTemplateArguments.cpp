class Tide : public Base<(1 > 0), std::function<void()>> {};
