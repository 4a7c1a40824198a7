enum class [[nodiscard]] Color { red [[deprecated]], green [[maybe_unused]] = 2 };
