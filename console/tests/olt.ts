import {execFileSync, spawn, type ChildProcess} from "node:child_process";
import {mkdtempSync, readFileSync, rmSync} from "node:fs";
import {connect} from "node:net";
import {tmpdir} from "node:os";
import path from "node:path";

const build = process.env["OLT_BINARIES"]!;
const checkout = process.env["OLT_CHECKOUT"]!;
const pages = process.env["OLT_PAGES"]!;

/** Resolves with the first line that holds the text; what the process prints when it ends before that is the error. */
function printed(child: ChildProcess, text: string): Promise<string> {
  return new Promise((resolve, reject) => {
    let output = "";
    const take = (chunk: Buffer) => {
      output += chunk;
      const line = output.split("\n").find(one => one.includes(text));
      if (line !== undefined) resolve(line);
    };
    child.stdout!.on("data", take);
    child.stderr!.on("data", take);
    child.on("exit", status => reject(new Error(`${child.spawnfile} ended with status ${status}: ${output}`)));
  });
}

/** Resolves when the process accepts connections on a port of this machine. */
function listening(child: ChildProcess, port: number): Promise<void> {
  return new Promise((resolve, reject) => {
    const attempt = () => {
      const socket = connect(port, "127.0.0.1");
      socket.once("connect", () => {
        socket.destroy();
        resolve();
      });
      socket.once("error", () => {
        if (child.exitCode === null && child.signalCode === null) setTimeout(attempt, 5);
        else reject(new Error(`${child.spawnfile} ended before it listened on port ${port}`));
      });
    };
    attempt();
  });
}

/** A simulated OLT with its daemon and gateway, in a folder of its own; ends whatever it started. */
export class Olt {
  readonly root = mkdtempSync(path.join(tmpdir(), "olt-"));
  url = "";
  #children = new Set<ChildProcess>();
  #daemon?: ChildProcess;
  #gateway?: ChildProcess;

  static async start({
    plant = ["--plant", "demo"],
    gateway = [],
  }: {plant?: readonly string[]; gateway?: readonly string[]} = {}): Promise<Olt> {
    const olt = new Olt();
    execFileSync(path.join(checkout, "scripts/prepare-root"), [olt.root, build]);
    const simulator = olt.#run("simulator/olt_simulator", plant, {OLT_ROOT: olt.root});
    await printed(simulator, "olt_simulator is ready");
    await olt.startDaemon();
    await olt.startGateway(gateway);
    return olt;
  }

  async startDaemon(): Promise<void> {
    const lines = readFileSync(path.join(this.root, "etc/api_service.env"), "utf8").trim().split("\n");
    const environment = Object.fromEntries(
      lines.map(line => [line.slice(0, line.indexOf("=")), line.slice(line.indexOf("=") + 1)]),
    );
    this.#daemon = this.#run("api_service/api_service", [], environment);
    await listening(this.#daemon, 9999);
  }

  /** As a crash would. */
  async killDaemon(): Promise<void> {
    await this.#end(this.#daemon!, "SIGKILL");
  }

  async startGateway(options: readonly string[]): Promise<void> {
    this.#gateway = this.#run("gateway/olt_console", ["--pages", pages, ...options], {});
    const line = await printed(this.#gateway, "olt_console is ready on ");
    this.url = line.slice(line.indexOf("http"));
  }

  async stopGateway(): Promise<void> {
    await this.#end(this.#gateway!, "SIGTERM");
  }

  /** Tells the simulator something, as `olt_sim` does. */
  sim(...command: string[]): string {
    return execFileSync(path.join(build, "simulator/olt_sim"), command, {
      env: {...process.env, OLT_ROOT: this.root},
      encoding: "utf8",
    });
  }

  async stop(): Promise<void> {
    await Promise.all([...this.#children].map(child => this.#end(child, "SIGTERM")));
    rmSync(this.root, {recursive: true, force: true});
  }

  #run(program: string, options: readonly string[], environment: Record<string, string>): ChildProcess {
    const child = spawn(path.join(build, program), options, {
      env: {...process.env, ...environment},
      stdio: ["ignore", "pipe", "pipe"],
    });
    child.stdout.resume();
    child.stderr.resume();
    this.#children.add(child);
    return child;
  }

  async #end(child: ChildProcess, signal: NodeJS.Signals): Promise<void> {
    this.#children.delete(child);
    if (child.exitCode !== null || child.signalCode !== null) return;
    const ended = new Promise(resolve => child.once("exit", resolve));
    child.kill(signal);
    await ended;
  }
}
