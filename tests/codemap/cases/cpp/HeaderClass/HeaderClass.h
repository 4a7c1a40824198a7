class Tide {
public:
    Tide();
    virtual ~Tide();
    void rise();
private:
    int height_ = 0;
};
