class TIDE_EXPORT Tide : public QObject {};
class __attribute__((visibility("default"))) Ebb {};
class [[nodiscard]] Flood {};
class alignas(16) Wide {};
class __declspec(dllexport) Old {};
