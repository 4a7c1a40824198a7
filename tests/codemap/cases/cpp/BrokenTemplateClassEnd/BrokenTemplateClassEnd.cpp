template <class T> class Sea {
public:
    void rise();
    int height;
