typedef NS_ENUM(NSInteger, Side) {
    SideLeft = 0, ///< the { left
    SideRight /* the } right */
};
int after;
