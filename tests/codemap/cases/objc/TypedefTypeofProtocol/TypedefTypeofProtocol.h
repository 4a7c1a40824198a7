typedef typeof(@protocol(Tide)) ProtocolType;
extern Protocol *tide(void);
@protocol Tide
@end
