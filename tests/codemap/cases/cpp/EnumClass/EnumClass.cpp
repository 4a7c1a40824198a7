enum class Color : unsigned char { red, green = 3 };
enum struct Side { left, right };
