// The top of a screen: the way up, what is shown, and what can be done with all of it.
import type { ComponentChildren } from "preact";

interface Properties {
  title: string;
  below?: string | undefined;
  up?: { name: string; onTap: () => void } | undefined;
  children?: ComponentChildren;
}

export function Header({ title, below, up, children }: Properties) {
  return (
    <header class="header">
      {up && (
        <button type="button" class="up" onClick={up.onTap} aria-label={`Up to ${up.name}`}>
          <span aria-hidden="true">‹</span>
        </button>
      )}
      <div class="header-text">
        <h1>{title}</h1>
        {below && <p class="header-below">{below}</p>}
      </div>
      {children && <div class="header-tools">{children}</div>}
    </header>
  );
}
