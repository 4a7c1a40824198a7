@ class Tide;
@ class Wave, Current;
@ interface Harbour : NSObject
@ property (nonatomic) int depth;
- (void)open;
@ end
@
protocol Port
@ optional
- (void)close;
@end
@ implementation Harbour
- (void)open {
    id names = @ [ @ "a", @ 1 ];
}
@ end
int last;
