/** What the build has made of the API's JSON Schemas: by element, without "configuration.". */
declare module "olt-schemas" {
  const documents: Record<string, {record: import("./model/schema.ts").Schema; setBy?: "operator" | "administrator"}>;
  export default documents;
}
