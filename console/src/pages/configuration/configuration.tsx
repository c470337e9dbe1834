import {pending} from "../../gateway/pending.ts";
import {depthOf, elementOf, linkTo, sections} from "../../model/elements.ts";
import {useStore} from "../../model/store.ts";
import {go} from "../../ui/route.ts";
import {Pending} from "./pending.tsx";
import {RecordPage} from "./record_page.tsx";
import {RecordTable} from "./record_table.tsx";

/** The elements, their records as forms, and what is pending. */
export function Configuration({path}: {path: readonly string[]}) {
  const changes = useStore(pending) ?? [];
  const element = elementOf(path[0] ?? "");
  const indices = path.slice(1).map(Number);
  const isRecord = element !== undefined && indices.length === depthOf(element);
  const changed = (of: string) => changes.filter(change => change.element.path === of).length;
  return (
    <div class="page">
      <div class="page-head">
        <h1>
          {element && (
            <a href="#/configuration" class="back" aria-label="Back to the pending changes">
              Configuration
            </a>
          )}
          {element ? (
            <>
              {" "}
              /{" "}
              {indices.length > 0 && !element.isHidden ? (
                <a href={linkTo(element, [])} class="back">
                  {element.title}
                </a>
              ) : (
                element.title
              )}
            </>
          ) : (
            "Configuration"
          )}
        </h1>
      </div>
      <div class="configuration">
        <nav class="elements" aria-label="Elements">
          <select
            class="element-choice"
            aria-label="Element"
            value={element?.path ?? ""}
            onChange={event => go(`/configuration/${event.currentTarget.value}`)}>
            <option value="">Pending changes</option>
            {sections.map(section => (
              <optgroup key={section.title} label={section.title}>
                {section.elements
                  .filter(({isHidden}) => !isHidden)
                  .map(({path: own, title}) => (
                    <option key={own} value={own}>
                      {title}
                    </option>
                  ))}
              </optgroup>
            ))}
          </select>
          <ul>
            <li>
              <a href="#/configuration" aria-current={element ? undefined : "page"}>
                Pending changes{changes.length > 0 && <span class="pill warn">{changes.length}</span>}
              </a>
            </li>
            {sections.map(section => (
              <li key={section.title}>
                <h3>{section.title}</h3>
                <ul>
                  {section.elements
                    .filter(({isHidden}) => !isHidden)
                    .map(one => (
                      <li key={one.path}>
                        <a href={linkTo(one, [])} aria-current={one.path === element?.path ? "page" : undefined}>
                          {one.title}
                          {changed(one.path) > 0 && <span class="pill warn">{changed(one.path)}</span>}
                        </a>
                      </li>
                    ))}
                </ul>
              </li>
            ))}
          </ul>
        </nav>
        {!element ? (
          <Pending />
        ) : isRecord ? (
          <RecordPage key={path.join("/")} element={element} indices={indices} />
        ) : (
          <RecordTable key={element.path} element={element} />
        )}
      </div>
    </div>
  );
}
