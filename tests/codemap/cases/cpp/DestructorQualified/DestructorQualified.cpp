sea::Tide::~Tide() noexcept {}
Box<int>::~Box() = default;
