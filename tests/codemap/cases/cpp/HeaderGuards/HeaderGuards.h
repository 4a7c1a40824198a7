#ifndef SEA_H
#define SEA_H
class Sea {
public:
    int tide() const;
};
#endif
