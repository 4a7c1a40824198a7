Tide::Tide() : a(1), b{2} { run(); }
Tide::Tide(int x)
    : a{x}
{
}
Tide::~Tide() {}
Tide::Tide(const Tide &) = default;
int after;
