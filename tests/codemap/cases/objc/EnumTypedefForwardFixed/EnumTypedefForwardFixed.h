typedef enum Colour : uint64_t Colour;
enum Colour : uint64_t {
    ColourRed,
};
typedef enum Size : unsigned int Size, *SizePointer;
enum Shade : int;
enum Shade : uint8_t;
struct Bits {
    enum Size size : 3;
};
