template <typename... Ts> struct Overload : Ts... { using Ts::operator()...; };
