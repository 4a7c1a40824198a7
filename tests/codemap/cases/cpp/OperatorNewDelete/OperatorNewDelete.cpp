void *operator new(std::size_t size) { return nullptr; }
void operator delete(void *place) noexcept {}
void *operator new[](std::size_t size) { return nullptr; }
