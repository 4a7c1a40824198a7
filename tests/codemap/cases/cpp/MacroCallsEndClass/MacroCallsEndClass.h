class Sea {
    void rise(int height);
    Q_DECLARE_PRIVATE(Sea)
    Q_DISABLE_COPY(Sea)
};
class Tide {
    explicit Tide(int height);
    Q_DISABLE_COPY(Tide)
};
