A::A() : Base<int, char>(1), size(sizeof(Base<int>)) {}
int after;
