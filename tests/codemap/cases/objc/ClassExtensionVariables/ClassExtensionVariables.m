@interface Tide () {
    int hidden;
}
@end
