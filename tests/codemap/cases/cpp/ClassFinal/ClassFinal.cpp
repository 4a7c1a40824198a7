class Tide final : public Water {};
class Ebb final {};
