@protocol A, B;
@protocol C;
@protocol D <A, B>
@end
