class A : public Countable<A, std::pair<int, A>> { int a; };
