@interface A
@property (nonatomic, copy, getter=isOn, setter=turn:) NSString *name;
@end
