struct A { operator std::vector<int>() const; template <typename T> operator T *() const; };
