template <template <typename> class C, typename T> struct Holder { C<T> all; };
