enum class Kind : std::uint8_t { ebb, flood = 2 };
enum struct Side { left };
