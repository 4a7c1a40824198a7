A::A() = default;
A::~A() = default;
