template <typename... Ts> struct Tuple : Ts... { using Ts::operator()...; };
template <typename... Ts> Tuple(Ts...) -> Tuple<Ts...>;
