class Tide {
    int first;
public:
    int second;
protected:
    int third;
private:
    int fourth;
};
