class /* the */ Tide // one {
    : public /* two { */ Water
{
    int a; // }
};
