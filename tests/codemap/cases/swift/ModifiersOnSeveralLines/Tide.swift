public
static
func
f() {}
@objc
private
    lazy var a = 1
