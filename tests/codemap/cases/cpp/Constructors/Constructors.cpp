class Tide {
public:
    Tide();
    explicit Tide(int a);
    Tide(const Tide &other) = delete;
    Tide(Tide &&) noexcept = default;
    ~Tide();
    virtual ~Tide() = default;
};
