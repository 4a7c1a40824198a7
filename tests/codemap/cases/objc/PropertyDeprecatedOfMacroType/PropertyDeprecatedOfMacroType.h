@interface Call : NSObject
@property (nonatomic, assign) BOOL isSaved DEPRECATED_MSG_ATTRIBUTE("Use 'isKept' instead.");
@property (nonatomic, assign) BOOL isKept;
- (BOOL)isOpen DEPRECATED_ATTRIBUTE;
@end
