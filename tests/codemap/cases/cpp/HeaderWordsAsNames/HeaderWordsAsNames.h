struct thing { int class; int operator; };
class Real { int template_; };
