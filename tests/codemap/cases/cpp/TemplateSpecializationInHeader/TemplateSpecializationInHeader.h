namespace tide {
struct Sea {
    template <typename T> static bool rise(T value);
};
template <> bool Sea::rise(int value);
template <>
EXPORT const char* Sea::name<float>(float value);
template bool Sea::rise(long value);
bool Sea::plain(int value);
}
