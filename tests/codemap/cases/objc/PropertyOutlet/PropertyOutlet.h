@interface A
@property (weak) IBOutlet UILabel *label;
@property (class, readonly) A *shared API_AVAILABLE(ios(9.0));
@property (nonatomic) IBInspectable CGFloat width;
@end
