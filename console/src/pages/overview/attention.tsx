import type {Concern} from "../../model/attention.ts";

export function Attention({concerns, isKnown}: {concerns: readonly Concern[]; isKnown: boolean}) {
  return (
    <section class="card attention" aria-label="What needs attention">
      <header>
        <h2>Needs attention</h2>
        {concerns.length > 0 && <span class="pill">{concerns.length}</span>}
      </header>
      {isKnown && concerns.length === 0 && <p class="empty">All is well.</p>}
      <ul>
        {concerns.map(({level, title, detail, link}) => (
          <li key={title}>
            <a href={link}>
              <span class={`status ${level}`}>
                <i aria-hidden="true" />
              </span>
              <span>
                <strong>{title}</strong>
                <small>{detail}</small>
              </span>
            </a>
          </li>
        ))}
      </ul>
    </section>
  );
}
