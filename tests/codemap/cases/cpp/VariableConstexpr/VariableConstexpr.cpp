constexpr int kLimit = 3;
inline constexpr std::string_view kName = "a";
constinit thread_local int count = 0;
