#!/usr/bin/python3
"""configweb in headless Chromium: open the page, pick a menu group, change an
enumeration and an integer through the page and read them back with
configctl, then change values with configctl and watch the page follow
without a reload. Saves a screenshot of the page as a test artifact.

Usage: browser_test.py CONFIGD CONFIGWEB CONFIGCTL ARTIFACT_DIR
Exits 77 (skipped) when Chromium, its driver or Selenium cannot be had.
"""
import json
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import urllib.request

SKIP = 77
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
GROUP = 3  # the Config menu: an integer with a unit and step, and enumerations
INTEGER = "eParamID_DisplayIntensity"
DEADLINE_S = 20


def skip(reason):
    print("SKIPPED: " + reason)
    sys.exit(SKIP)


def ready_line(process, prefix):
    """The first line of standard output that starts with prefix."""
    for line in process.stdout:
        if line.startswith(prefix):
            return line.strip()
    raise RuntimeError("no line starting with %r" % prefix)


def eventually(check, what):
    end = time.monotonic() + DEADLINE_S
    while time.monotonic() < end:
        if check():
            return
        time.sleep(0.05)
    raise AssertionError("timed out waiting for " + what)


def main():
    configd_path, configweb_path, configctl_path, artifacts = sys.argv[1:5]
    bootstrap = subprocess.run([os.path.join(ROOT, "scripts", "bootstrap"), "--browser"],
                               capture_output=True, text=True)
    if bootstrap.returncode != 0:
        skip("scripts/bootstrap --browser failed: " + bootstrap.stderr.strip()[-300:])
    try:
        from selenium import webdriver
        from selenium.webdriver.chrome.service import Service
        from selenium.webdriver.common.by import By
        from selenium.webdriver.common.keys import Keys
        from selenium.webdriver.support.ui import Select, WebDriverWait
    except ImportError as error:
        skip("Selenium is not importable: %s" % error)
    if not os.path.exists("/usr/bin/chromedriver"):
        skip("/usr/bin/chromedriver is missing")

    children = []
    driver = None
    state = tempfile.mkdtemp(prefix="configweb-browser-")
    try:
        # Network servers on ports of the system's choice and events on a port
        # of their own, so that tests running side by side never meet.
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as probe:
            probe.bind(("127.0.0.1", 0))
            event_port = probe.getsockname()[1]
        configd = subprocess.Popen([configd_path, "--port", "0", "--state-dir", state,
                                    "--tcp-port", "0", "--udp-port", "0",
                                    "--multicast-port", str(event_port)],
                                   stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, text=True)
        children.append(configd)
        uri = "socket://127.0.0.1:" + ready_line(configd, "configd: ready on port").split()[-1]
        web = subprocess.Popen([configweb_path, "--uri", uri, "--listen", "127.0.0.1:0"],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        children.append(web)
        base = ready_line(web, "configweb: serving").split()[-1]

        def ctl(*args):
            out = subprocess.run([configctl_path, "--uri", uri, "--json"] + list(args),
                                 capture_output=True, text=True, timeout=DEADLINE_S)
            return json.loads(out.stdout) if out.stdout else {}

        no_proxy = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        group = json.load(no_proxy.open(base + "api/groups/%d" % GROUP, timeout=DEADLINE_S))
        enum = next(p for p in group["params"] if not p["readonly"]
                    and p["descriptor"]["kind"] == "enumeration"
                    and len(p["descriptor"]["values"]) > 1)
        values = [v["value"] for v in enum["descriptor"]["values"]]
        start = enum["current"]["value"]
        other = next(v for v in values if v != start)

        options = webdriver.ChromeOptions()
        for flag in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
                     "--no-proxy-server", "--window-size=1200,900"):
            options.add_argument(flag)
        options.binary_location = "/usr/bin/chromium"
        try:
            driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        except Exception as error:  # the browser cannot start here
            skip("headless Chromium does not start: %s" % str(error).splitlines()[0])
        wait = WebDriverWait(driver, DEADLINE_S)
        driver.get(base)
        wait.until(lambda d: d.find_elements(By.ID, "group-%d" % GROUP)).pop().click()
        wait.until(lambda d: d.find_elements(By.NAME, INTEGER))
        wait.until(lambda d: "connected" in d.find_element(By.ID, "link").text)

        # Through the page, read back with configctl.
        Select(driver.find_element(By.NAME, enum["param"])).select_by_value(str(other))
        eventually(lambda: ctl("get", enum["param"]).get("value") == other,
                   "%s = %d through the page" % (enum["param"], other))
        field = driver.find_element(By.NAME, INTEGER)
        field.send_keys(Keys.END, Keys.BACKSPACE * 6, "50", Keys.TAB)  # typed over, as a user would
        eventually(lambda: ctl("get", INTEGER).get("value") == 50, INTEGER + " = 50 through the page")

        # Through configctl, seen on the page without a reload.
        marker = driver.execute_script("return window.performance.timeOrigin;")
        ctl("set", INTEGER, "75")
        wait.until(lambda d: d.find_element(By.NAME, INTEGER).get_attribute("value") == "75")
        ctl("set", enum["param"], str(start))
        wait.until(lambda d: Select(d.find_element(By.NAME, enum["param"]))
                   .first_selected_option.get_attribute("value") == str(start))
        assert marker == driver.execute_script("return window.performance.timeOrigin;"), \
            "the page was reloaded"

        os.makedirs(artifacts, exist_ok=True)
        shot = os.path.join(artifacts, "configweb.png")
        driver.save_screenshot(shot)
        print("screenshot: " + shot)
        print("PASSED")
        return 0
    finally:
        if driver is not None:
            driver.quit()
        for child in reversed(children):
            child.terminate()
            try:
                child.wait(timeout=DEADLINE_S)
            except subprocess.TimeoutExpired:
                child.kill()
        shutil.rmtree(state, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
