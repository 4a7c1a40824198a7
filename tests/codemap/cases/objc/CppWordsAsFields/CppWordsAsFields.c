struct view { int class, template, namespace; int private; };
